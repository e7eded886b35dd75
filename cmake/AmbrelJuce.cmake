# JUCE, compiled once. Everything that uses JUCE links ambrel_juce and never the modules themselves, which
# would compile them again for each target.
#
#   ambrel_juce          what the plug-in needs: no hosting, no FLAC, no Vorbis
#   ambrel_juce_codecs   the audio file formats with FLAC and Ogg Vorbis, for tools; brings ambrel_juce along
#   ambrel_juce_hosting  the plug-in classes with VST3 and LV2 hosting, for tests; brings ambrel_juce along
#
# The two last hold one module compiled anew with more in it. As object libraries they are linked before
# ambrel_juce, whose own copy of that module is then never asked for. So the formats need none of the codec
# libraries at run time, and carry no hosting code.

find_package(JUCE 7.0.5 CONFIG REQUIRED)

# What every user of the headers must see, too.
set(AMBREL_JUCE_DEFINITIONS
    JUCE_DISPLAY_SPLASH_SCREEN=0
    JUCE_MODAL_LOOPS_PERMITTED=1
    JUCE_REPORT_APP_USAGE=0
    JUCE_STRICT_REFCOUNTEDPOINTER=1
    JUCE_USE_CURL=0
    JUCE_VST3_CAN_REPLACE_VST2=0
    JUCE_WEB_BROWSER=0)

add_library(ambrel_juce STATIC)
target_link_libraries(ambrel_juce PRIVATE juce::juce_audio_utils)
if(APPLE)
    target_link_libraries(ambrel_juce PRIVATE juce::juce_opengl)
elseif(UNIX)
    # Debian's JUCE takes libpng and libjpeg from the system; they come last, behind the modules that use them.
    target_link_libraries(ambrel_juce PRIVATE juce::pkgconfig_JUCE_IMG_LINUX_DEPS)
endif()
target_compile_definitions(ambrel_juce
    PRIVATE ${AMBREL_JUCE_DEFINITIONS} JUCE_USE_FLAC=0 JUCE_USE_OGGVORBIS=0
    INTERFACE "$<FILTER:$<TARGET_PROPERTY:ambrel_juce,COMPILE_DEFINITIONS>,EXCLUDE,^JUCE_USE_(FLAC|OGGVORBIS)=>")
target_include_directories(ambrel_juce SYSTEM INTERFACE $<TARGET_PROPERTY:ambrel_juce,INCLUDE_DIRECTORIES>)
target_compile_features(ambrel_juce PUBLIC cxx_std_20)
# A section for each function, so that linkers can leave out what nobody calls.
target_compile_options(ambrel_juce PRIVATE
    $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-ffunction-sections;-fdata-sections>)
set_target_properties(ambrel_juce PROPERTIES
    CXX_VISIBILITY_PRESET hidden
    C_VISIBILITY_PRESET hidden
    VISIBILITY_INLINES_HIDDEN ON
    POSITION_INDEPENDENT_CODE ON)

# One JUCE module compiled anew with definitions of its own, in front of ambrel_juce.
function(ambrel_juce_variant target module)
    file(GLOB sources "${JUCE_MODULES_DIR}/${module}/*.cpp")
    if(APPLE)
        # A source that has an Objective-C++ twin is included by it.
        file(GLOB twins "${JUCE_MODULES_DIR}/${module}/*.mm")
        foreach(twin ${twins})
            string(REGEX REPLACE "mm$" "cpp" source "${twin}")
            list(REMOVE_ITEM sources "${source}")
        endforeach()
        list(APPEND sources ${twins})
    endif()
    add_library(${target} OBJECT EXCLUDE_FROM_ALL ${sources})
    target_compile_definitions(${target} PRIVATE ${ARGN})
    target_link_libraries(${target} PUBLIC ambrel_juce)
endfunction()

if(UNIX AND NOT APPLE)
    # Debian's JUCE has no sources of the codecs: they come from the system.
    find_package(PkgConfig REQUIRED)
    pkg_check_modules(AMBREL_CODECS IMPORTED_TARGET flac ogg vorbis vorbisenc vorbisfile)
endif()
if(AMBREL_CODECS_FOUND)
    ambrel_juce_variant(ambrel_juce_codecs juce_audio_formats
        JUCE_INCLUDE_FLAC_CODE=0 JUCE_INCLUDE_OGGVORBIS_CODE=0)
    target_link_libraries(ambrel_juce_codecs PUBLIC PkgConfig::AMBREL_CODECS)
else()
    ambrel_juce_variant(ambrel_juce_codecs juce_audio_formats)
endif()

ambrel_juce_variant(ambrel_juce_hosting juce_audio_processors JUCE_PLUGINHOST_VST3=1 JUCE_PLUGINHOST_LV2=1)
