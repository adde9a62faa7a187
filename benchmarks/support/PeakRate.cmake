# For the benchmarks, and for the test that counts its instructions.
include_guard(GLOBAL)
find_package(hwy CONFIG REQUIRED)
add_library(fenn_peak_rate STATIC ${CMAKE_CURRENT_LIST_DIR}/PeakRate.cpp)
fenn_configure_target(fenn_peak_rate)
target_include_directories(fenn_peak_rate PUBLIC ${PROJECT_SOURCE_DIR})
target_link_libraries(fenn_peak_rate PUBLIC hwy::hwy)
