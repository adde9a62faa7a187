include(${CMAKE_CURRENT_LIST_DIR}/../OutsideProject.cmake)

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${FENN_BINARY_DIR} --config ${CONFIG} --prefix ${WORK_DIR}/installed)

# The library is found where the tree was moved to.
file(RENAME ${WORK_DIR}/installed ${WORK_DIR}/moved)
set(ENV{PKG_CONFIG_PATH} ${WORK_DIR}/moved/${LIBDIR}/pkgconfig)
set(ENV{LD_LIBRARY_PATH} ${WORK_DIR}/moved/${LIBDIR})
set(ENV{CXX} ${CXX_COMPILER})
set(ENV{CXXFLAGS} "${CXX_FLAGS}")
get_filename_component(packageTests ${CMAKE_CURRENT_LIST_DIR} DIRECTORY)
run(${CMAKE_CURRENT_LIST_DIR}/check.sh ${packageTests} ${packageTests}/../../examples ${WORK_DIR}/build)
