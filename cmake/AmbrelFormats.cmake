# VST3, LV2, VST2, the stand-alone program, and AU on macOS: thin wrappers of JUCE's around ambrel_plugin.

set(AMBREL_LV2_URI "https://veskora.com/plugins/ambrel")

set(formats VST3 LV2 Standalone)
if(APPLE)
    list(APPEND formats AU)
endif()

# VST2 is built over the free headers of the FST project, which two headers of ours put where JUCE looks.
find_path(AMBREL_FST_INCLUDE pluginterfaces/fst/aeffectx.h)
if(AMBREL_FST_INCLUDE)
    juce_set_vst2_sdk_path("${Ambrel_SOURCE_DIR}/cmake/vst2")
    list(APPEND formats VST)
else()
    message(STATUS "No FST headers: the VST2 is not built")
endif()

juce_add_plugin(Ambrel
    PRODUCT_NAME "Ambrel"
    PLUGIN_NAME "Ambrel"
    DESCRIPTION "Veskora Ambrel"
    COMPANY_NAME "Veskora"
    COMPANY_WEBSITE "https://veskora.com"
    BUNDLE_ID com.veskora.Ambrel
    AAX_IDENTIFIER com.veskora.Ambrel
    VERSION ${Ambrel_VERSION}
    PLUGIN_MANUFACTURER_CODE VESK
    PLUGIN_CODE AMBR
    FORMATS ${formats}
    IS_SYNTH FALSE
    NEEDS_MIDI_INPUT FALSE
    NEEDS_MIDI_OUTPUT FALSE
    EDITOR_WANTS_KEYBOARD_FOCUS FALSE
    VST2_CATEGORY kPlugCategRoomFx
    VST3_CATEGORIES Fx Reverb
    AAX_CATEGORY AAX_ePlugInCategory_Reverb
    AU_MAIN_TYPE kAudioUnitType_Effect
    AU_EXPORT_PREFIX AmbrelAU
    LV2URI "${AMBREL_LV2_URI}"
    COPY_PLUGIN_AFTER_BUILD FALSE)
target_link_libraries(Ambrel PUBLIC ambrel_plugin)

# Debian's JUCE takes the plug-in's name for a URI that is not defined by then.
target_compile_definitions(Ambrel PUBLIC JucePlugin_LV2URI="${AMBREL_LV2_URI}")

# Where the wrappers are built, and which folder of each takes Contents/Resources.
set(AMBREL_ARTEFACTS "${CMAKE_CURRENT_BINARY_DIR}/Ambrel_artefacts/$<CONFIG>")
set(VST3_folder "${AMBREL_ARTEFACTS}/VST3/Ambrel.vst3")
set(LV2_folder "${AMBREL_ARTEFACTS}/LV2/Ambrel.lv2")
if(APPLE)
    set(AU_folder "${AMBREL_ARTEFACTS}/AU/Ambrel.component")
    set(VST_folder "${AMBREL_ARTEFACTS}/VST/Ambrel.vst")
    set(Standalone_folder "${AMBREL_ARTEFACTS}/Standalone/Ambrel.app")
else()
    set(VST_folder "${AMBREL_ARTEFACTS}/VST/Ambrel")
    set(Standalone_folder "${AMBREL_ARTEFACTS}/Standalone")
endif()

foreach(format ${formats})
    ambrel_bundle_resources(Ambrel_${format} "${${format}_folder}")
    set_target_properties(Ambrel_${format} PROPERTIES AMBREL_BUNDLE "${${format}_folder}")
    if(UNIX AND NOT APPLE)
        # No library is needed at run time that is not used, and nothing but the entry points is visible, so
        # that two plug-ins in one host never share a symbol.
        target_link_options(Ambrel_${format} PRIVATE LINKER:--as-needed LINKER:--gc-sections)
        if(NOT format STREQUAL "Standalone")
            target_link_options(Ambrel_${format} PRIVATE
                "LINKER:--version-script=${Ambrel_SOURCE_DIR}/cmake/entryPoints.map")
        endif()
    endif()
endforeach()

# The helper that writes the LV2's description loads the plug-in, which must not find the builder's own presets.
set_property(DIRECTORY PROPERTY RULE_LAUNCH_CUSTOM
    "\"${CMAKE_COMMAND}\" -E env \"HOME=${CMAKE_BINARY_DIR}/home\" \"XDG_CONFIG_HOME=${CMAKE_BINARY_DIR}/home/.config\"")

add_custom_command(TARGET Ambrel_LV2 POST_BUILD
    COMMAND "${CMAKE_COMMAND}" -D "BUNDLE=$<TARGET_FILE_DIR:Ambrel_LV2>"
        -P "${Ambrel_SOURCE_DIR}/cmake/CompleteLv2.cmake"
    VERBATIM)

# The description lists the presets, so it is written again when they change.
set_target_properties(Ambrel_LV2 PROPERTIES LINK_DEPENDS "${CMAKE_BINARY_DIR}/share/Ambrel_LV2.stamp")

if(TARGET Ambrel_VST)
    if(NOT APPLE)
        # A VST2 is a single file on other systems: a folder of its own keeps its resources beside it.
        set_target_properties(Ambrel_VST PROPERTIES PREFIX "" LIBRARY_OUTPUT_DIRECTORY "${VST_folder}")
    endif()
    # VST2 writes a version as decimal digits.
    math(EXPR vst2_version "${Ambrel_VERSION_MAJOR} * 100 + ${Ambrel_VERSION_MINOR} * 10 + ${Ambrel_VERSION_PATCH}")
    target_compile_definitions(Ambrel_VST PRIVATE JucePlugin_VSTChunkStructureVersion=${vst2_version})
    target_compile_options(Ambrel_VST PRIVATE
        $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wno-cpp;-Wno-deprecated-declarations>)
endif()

if(UNIX AND NOT APPLE)
    target_sources(Ambrel_Standalone PRIVATE standalone/main.cpp)
    target_compile_definitions(Ambrel_Standalone PRIVATE JUCE_USE_CUSTOM_PLUGIN_STANDALONE_ENTRYPOINT=1)
endif()
