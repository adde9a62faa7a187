# FENN_SANITIZERS: a comma-separated list for -fsanitize, for every target of the build.
set(FENN_SANITIZERS "" CACHE STRING "Sanitizers to build with, for instance address,undefined or thread")
if(FENN_SANITIZERS)
    add_compile_options(-fsanitize=${FENN_SANITIZERS} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${FENN_SANITIZERS})
endif()
