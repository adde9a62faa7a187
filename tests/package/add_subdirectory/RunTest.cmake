include(${CMAKE_CURRENT_LIST_DIR}/../OutsideProject.cmake)

configure_and_build(${WORK_DIR}/build)
expect_output(${WORK_DIR}/build/embedding_host ${SOURCE_DIR}/embedding_host.expected.txt)
expect_output(${WORK_DIR}/build/internals_host ${SOURCE_DIR}/internals_host.expected.txt)
