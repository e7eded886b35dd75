# What every target of our own code shares: the language level, the warnings, the include root and the
# sanitizers. Third-party code (JUCE's modules, GoogleTest) is not built with these warnings.

find_program(AMBREL_CCACHE ccache)
if(AMBREL_CCACHE AND PROJECT_IS_TOP_LEVEL)
    set(CMAKE_C_COMPILER_LAUNCHER "${AMBREL_CCACHE}")
    set(CMAKE_CXX_COMPILER_LAUNCHER "${AMBREL_CCACHE}")
endif()

if(AMBREL_SANITIZE)
    add_compile_options(-fsanitize=${AMBREL_SANITIZE} -fno-omit-frame-pointer -fno-sanitize-recover=all)
    add_link_options(-fsanitize=${AMBREL_SANITIZE})
    # The sanitizers' own code makes GCC see uninitialised variables where there are none.
    add_compile_options($<$<CXX_COMPILER_ID:GNU>:-Wno-maybe-uninitialized>)
endif()

set(AMBREL_WARNINGS
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wall;-Wextra;-Wpedantic;-Wshadow;-Wconversion;-Werror>
    $<$<CXX_COMPILER_ID:MSVC>:/W4;/WX>)

# Floating-point results decide whole samples in places (delay lengths, reflection offsets), so no source
# of ours lets the compiler fuse a multiplication with an addition on its own.
set(AMBREL_FLOATING_POINT $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-ffp-contract=off>)

# Settings for a target of our own code.
function(ambrel_target target)
    target_compile_features(${target} PUBLIC cxx_std_20)
    target_compile_options(${target} PRIVATE ${AMBREL_WARNINGS} ${AMBREL_FLOATING_POINT})
    target_include_directories(${target} PUBLIC "${Ambrel_SOURCE_DIR}")
    set_target_properties(${target} PROPERTIES
        CXX_EXTENSIONS OFF
        CXX_VISIBILITY_PRESET hidden
        VISIBILITY_INLINES_HIDDEN ON
        POSITION_INDEPENDENT_CODE ON)
endfunction()
