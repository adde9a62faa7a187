# Steps that the two package tests share. Any step that fails ends the test.

function(run)
    execute_process(COMMAND ${ARGN} COMMAND_ERROR_IS_FATAL ANY)
endfunction()

function(configure_and_build buildDir)
    run(${CMAKE_COMMAND} -S ${SOURCE_DIR} -B ${buildDir} -G ${GENERATOR}
        -D CMAKE_BUILD_TYPE=${CONFIG}
        -D CMAKE_CXX_COMPILER=${CXX_COMPILER}
        "-DCMAKE_CXX_FLAGS=${CXX_FLAGS}"
        -D CMAKE_TOOLCHAIN_FILE=${TOOLCHAIN_FILE}
        ${ARGN})
    run(${CMAKE_COMMAND} --build ${buildDir} --config ${CONFIG} --parallel 2)
endfunction()

# Runs a program that must succeed and print exactly what the file holds.
function(expect_output program expectedFile)
    execute_process(COMMAND ${EMULATOR} ${program}
        OUTPUT_VARIABLE actual
        COMMAND_ERROR_IS_FATAL ANY)
    file(READ ${expectedFile} expected)
    if(NOT actual STREQUAL expected)
        message(FATAL_ERROR "${program} printed\n${actual}instead of\n${expected}")
    endif()
endfunction()
