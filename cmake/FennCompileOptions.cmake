# What every target of this project is compiled with.
#
# -ffp-contract=off is part of the numerical contract, not a preference: without it GCC fuses a multiply and an add into
# one rounding, even through SIMD intrinsics, and results would differ from one processor to the next.

set(FENN_EXACT_ARITHMETIC_OPTIONS $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-ffp-contract=off>
                                  $<$<CXX_COMPILER_ID:MSVC>:/fp:precise>)

function(fenn_configure_target target)
    target_compile_features(${target} PUBLIC cxx_std_17)
    # As a property too: the flag then stands in every command, also where it is the compiler's default.
    set_target_properties(${target} PROPERTIES
        CXX_STANDARD 17
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
    target_compile_options(${target} PRIVATE ${FENN_EXACT_ARITHMETIC_OPTIONS})
    # A project that embeds this one brings its own compiler: what it warns about must not break that build.
    if(PROJECT_IS_TOP_LEVEL)
        target_compile_options(${target} PRIVATE
            $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall -Wextra -Wpedantic -Wconversion -Wshadow>)
    endif()
    # Off unless asked for: a packager's compiler may know warnings that ours does not.
    if(FENN_WARNINGS_AS_ERRORS)
        target_compile_options(${target} PRIVATE
            $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Werror>
            $<$<CXX_COMPILER_ID:MSVC>:/WX>)
    endif()
endfunction()
