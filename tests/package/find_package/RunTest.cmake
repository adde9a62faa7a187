include(${CMAKE_CURRENT_LIST_DIR}/../OutsideProject.cmake)

file(REMOVE_RECURSE ${WORK_DIR})
run(${CMAKE_COMMAND} --install ${FENN_BINARY_DIR} --config ${CONFIG} --prefix ${WORK_DIR}/installed)

# The package is found, and the programs are linked, where the tree was moved to.
file(RENAME ${WORK_DIR}/installed ${WORK_DIR}/moved)
configure_and_build(${WORK_DIR}/build -D CMAKE_PREFIX_PATH=${WORK_DIR}/moved)
expect_output(${WORK_DIR}/build/minimal_host ${SOURCE_DIR}/minimal_host.expected.txt)
expect_output(${WORK_DIR}/build/contract_host ${SOURCE_DIR}/contract_host.expected.txt)

# Programs and libraries find each other when they are moved together once more.
run(${CMAKE_COMMAND} --install ${WORK_DIR}/build --config ${CONFIG} --prefix ${WORK_DIR}/moved)
file(RENAME ${WORK_DIR}/moved ${WORK_DIR}/moved_again)
expect_output(${WORK_DIR}/moved_again/bin/minimal_host ${SOURCE_DIR}/minimal_host.expected.txt)
expect_output(${WORK_DIR}/moved_again/bin/contract_host ${SOURCE_DIR}/contract_host.expected.txt)
