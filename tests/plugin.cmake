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

# What is installed, in hosts: the product is installed once into a folder of its own, where all tests below find it.
if(NOT UNIX OR APPLE OR NOT PROJECT_IS_TOP_LEVEL)
    return()
endif()

set(stage "${CMAKE_BINARY_DIR}/stage")
set(prefix "${stage}/usr")
add_test(NAME install COMMAND "${CMAKE_CURRENT_SOURCE_DIR}/install.sh" "${CMAKE_BINARY_DIR}" "${stage}")
set_tests_properties(install PROPERTIES FIXTURES_SETUP installed)

# In a home of its own and without a display every run is alike.
set(home "${CMAKE_CURRENT_BINARY_DIR}/home")
set(host_environment "HOME=${home}" "XDG_CONFIG_HOME=${home}/.config" "XDG_DATA_HOME=${home}/.local/share")
function(ambrel_installed_test name)
    add_test(NAME ${name} COMMAND ${ARGN})
    set_tests_properties(${name} PROPERTIES FIXTURES_REQUIRED installed ENVIRONMENT "${host_environment};DISPLAY=")
endfunction()

add_executable(ambrel_host
    hosts/EditorChecks.cpp hosts/FormatChecks.cpp hosts/JucePlugIn.cpp hosts/LeakChecks.cpp hosts/main.cpp)
ambrel_target(ambrel_host)
target_link_libraries(ambrel_host PRIVATE ambrel_juce_hosting ${CMAKE_DL_LIBS})
set(host_formats VST3 LV2)
if(TARGET Ambrel_VST)
    target_sources(ambrel_host PRIVATE hosts/Vst2PlugIn.cpp)
    target_include_directories(ambrel_host SYSTEM PRIVATE "${AMBREL_FST_INCLUDE}")
    target_compile_options(ambrel_host PRIVATE $<$<CXX_COMPILER_ID:GNU,Clang,AppleClang>:-Wno-cpp;-Wno-deprecated-declarations>)
    target_compile_definitions(ambrel_host PRIVATE AMBREL_HOST_HAS_VST2=1)
    list(APPEND host_formats VST2)
endif()

# A window needs a display; Xvfb is one that nobody sees.
find_program(AMBREL_XVFB_RUN xvfb-run)
foreach(format ${host_formats})
    ambrel_installed_test(host_${format} ambrel_host "${prefix}" ${format})
    if(AMBREL_XVFB_RUN)
        ambrel_installed_test(window_${format} "${AMBREL_XVFB_RUN}" -a
            $<TARGET_FILE:ambrel_host> "${prefix}" ${format} window)
        set_tests_properties(window_${format} PROPERTIES RESOURCE_LOCK display)
    endif()
endforeach()
ambrel_installed_test(host_across_formats ambrel_host "${prefix}" across)

ambrel_installed_test(standalone_without_display "${prefix}/bin/Ambrel")
set_tests_properties(standalone_without_display PROPERTIES PASS_REGULAR_EXPRESSION "there is no display")
ambrel_installed_test(installed_files "${CMAKE_CURRENT_SOURCE_DIR}/check_install.sh" "${Ambrel_SOURCE_DIR}" "${prefix}")

# What the installed files show and need. Sanitizers apart, it is the same in every build.
if(NOT AMBREL_SANITIZE)
    set(check_formats "${CMAKE_CURRENT_SOURCE_DIR}/check_formats.sh")
    ambrel_installed_test(symbols_VST3 "${check_formats}" "${prefix}/lib/vst3/Ambrel.vst3/Contents/*-linux/Ambrel.so"
        GetPluginFactory ModuleEntry ModuleExit)
    ambrel_installed_test(symbols_LV2 "${check_formats}" "${prefix}/lib/lv2/Ambrel.lv2/libAmbrel.so"
        lv2_descriptor lv2ui_descriptor)
    if(TARGET Ambrel_VST)
        ambrel_installed_test(symbols_VST2 "${check_formats}" "${prefix}/lib/vst/Ambrel/Ambrel.so" VSTPluginMain main)
    endif()
    ambrel_installed_test(symbols_standalone "${check_formats}" "${prefix}/bin/Ambrel")
    ambrel_installed_test(symbols_render "${check_formats}" "${prefix}/bin/ambrel-render")
endif()
