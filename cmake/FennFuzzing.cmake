# FENN_BUILD_FUZZERS: every target of the build then tells libFuzzer which edges it takes.
if(FENN_BUILD_FUZZERS)
    if(NOT CMAKE_CXX_COMPILER_ID STREQUAL "Clang")
        message(FATAL_ERROR "FENN_BUILD_FUZZERS needs Clang: cmake --preset fuzz")
    endif()
    add_compile_options(-fsanitize=fuzzer-no-link)
endif()
