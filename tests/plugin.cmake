# Tests of what uses JUCE: the plug-in and the renderer as libraries, and the finished formats in small hosts.

file(GLOB plugin_tests CONFIGURE_DEPENDS
    plugin/*.cpp plugin/*.h editor/*.cpp editor/*.h render/*.cpp render/*.h)
add_executable(ambrel_plugin_tests ${plugin_tests})
ambrel_target(ambrel_plugin_tests)
target_link_libraries(ambrel_plugin_tests PRIVATE ambrel_render_lib ambrel_plugin GTest::gtest)
add_dependencies(ambrel_plugin_tests ambrel_resources)
gtest_discover_tests(ambrel_plugin_tests DISCOVERY_MODE PRE_TEST)
