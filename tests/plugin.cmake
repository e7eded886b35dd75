# Tests of what uses JUCE: the plug-in and the renderer as libraries, and the finished formats in small hosts.

file(GLOB plugin_tests CONFIGURE_DEPENDS
    plugin/*.cpp plugin/*.h editor/*.cpp editor/*.h render/*.cpp render/*.h)
add_executable(ambrel_plugin_tests ${plugin_tests})
ambrel_target(ambrel_plugin_tests)
target_link_libraries(ambrel_plugin_tests PRIVATE ambrel_render_lib ambrel_plugin GTest::gtest)
add_dependencies(ambrel_plugin_tests ambrel_resources)
gtest_discover_tests(ambrel_plugin_tests DISCOVERY_MODE PRE_TEST)
add_subdirectory(render)
add_subdirectory(artwork)
add_subdirectory(soak)

# The themes once more on a system without a single font, where the compiled-in one steps in.
add_test(NAME themes_without_fonts COMMAND ambrel_plugin_tests "--gtest_filter=Theme*")
set_tests_properties(themes_without_fonts PROPERTIES ENVIRONMENT "JUCE_FONT_PATH=/nonexistent")

# The hosts run in a home of their own, which makes every run alike.
set(host_environment "HOME=${CMAKE_CURRENT_BINARY_DIR}/home" "XDG_CONFIG_HOME=${CMAKE_CURRENT_BINARY_DIR}/home/.config"
    "DISPLAY=")

add_executable(ambrel_juce_host hosts/juceHost.cpp hosts/Checks.h)
ambrel_target(ambrel_juce_host)
target_link_libraries(ambrel_juce_host PRIVATE ambrel_juce_hosting)
foreach(format VST3 LV2)
    add_dependencies(ambrel_juce_host Ambrel_${format})
    add_test(NAME host_${format} COMMAND ambrel_juce_host ${format}
        "$<TARGET_GENEX_EVAL:Ambrel_${format},$<TARGET_PROPERTY:Ambrel_${format},AMBREL_BUNDLE>>")
    set_tests_properties(host_${format} PROPERTIES ENVIRONMENT "${host_environment}")
endforeach()

if(TARGET Ambrel_VST)
    add_executable(ambrel_vst2_host hosts/vst2Host.cpp hosts/Checks.h)
    ambrel_target(ambrel_vst2_host)
    target_include_directories(ambrel_vst2_host SYSTEM PRIVATE "${AMBREL_FST_INCLUDE}")
    target_compile_options(ambrel_vst2_host PRIVATE $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wno-cpp>)
    target_link_libraries(ambrel_vst2_host PRIVATE ${CMAKE_DL_LIBS})
    add_dependencies(ambrel_vst2_host Ambrel_VST)
    add_test(NAME host_VST COMMAND ambrel_vst2_host "$<TARGET_FILE:Ambrel_VST>")
    set_tests_properties(host_VST PROPERTIES ENVIRONMENT "${host_environment}")
endif()

if(UNIX AND NOT APPLE)
    add_test(NAME standalone_without_display COMMAND Ambrel_Standalone)
    set_tests_properties(standalone_without_display PROPERTIES ENVIRONMENT "${host_environment}"
        PASS_REGULAR_EXPRESSION "there is no display")
endif()

# What the finished files show and need. ELF and sanitizers apart, it is the same in every build.
if(UNIX AND NOT APPLE AND NOT AMBREL_SANITIZE)
    set(VST3_entries GetPluginFactory ModuleEntry ModuleExit)
    set(LV2_entries lv2_descriptor lv2ui_descriptor)
    set(VST_entries VSTPluginMain main)
    foreach(format VST3 LV2 VST)
        if(TARGET Ambrel_${format})
            add_test(NAME symbols_${format} COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/check_formats.sh"
                "$<TARGET_FILE:Ambrel_${format}>" ${${format}_entries})
        endif()
    endforeach()
endif()
