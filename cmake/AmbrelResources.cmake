# The files that the plug-in reads at run time, laid out as it looks for them: presets in Presets/, translations
# and help pages beside it. They are staged once, in share/Ambrel of the build folder, where programs in the
# build folder find them, and copied from there into the bundles and by the installation.

set(AMBREL_RESOURCES "${CMAKE_BINARY_DIR}/share/Ambrel" CACHE INTERNAL "Presets, translations and help")

file(GLOB_RECURSE resource_files CONFIGURE_DEPENDS
    "${Ambrel_SOURCE_DIR}/resources/presets/*.xml"
    "${Ambrel_SOURCE_DIR}/resources/translations/*.loc"
    "${Ambrel_SOURCE_DIR}/resources/help/*")

# A file that was removed from the sources must not stay behind: the whole folder is made anew.
set(copy_commands)
foreach(pair "presets;Presets" "translations;." "help;.")
    list(GET pair 0 from)
    list(GET pair 1 to)
    if(IS_DIRECTORY "${Ambrel_SOURCE_DIR}/resources/${from}")
        list(APPEND copy_commands COMMAND "${CMAKE_COMMAND}" -E copy_directory
            "${Ambrel_SOURCE_DIR}/resources/${from}" "${AMBREL_RESOURCES}/${to}")
    endif()
endforeach()

set(stamp "${CMAKE_BINARY_DIR}/share/resources.stamp")
add_custom_command(OUTPUT "${stamp}"
    COMMAND "${CMAKE_COMMAND}" -E rm -rf "${AMBREL_RESOURCES}"
    COMMAND "${CMAKE_COMMAND}" -E make_directory "${AMBREL_RESOURCES}"
    ${copy_commands}
    COMMAND "${CMAKE_COMMAND}" -E touch "${stamp}"
    DEPENDS ${resource_files}
    COMMENT "Staging presets, translations and help"
    VERBATIM)
add_custom_target(ambrel_resources ALL DEPENDS "${stamp}")

# Copies the staged resources to folder/Contents/Resources before target is built.
function(ambrel_bundle_resources target folder)
    set(bundle_stamp "${CMAKE_BINARY_DIR}/share/${target}.stamp")
    add_custom_command(OUTPUT "${bundle_stamp}"
        COMMAND "${CMAKE_COMMAND}" -E rm -rf "${folder}/Contents/Resources"
        COMMAND "${CMAKE_COMMAND}" -E copy_directory "${AMBREL_RESOURCES}" "${folder}/Contents/Resources"
        COMMAND "${CMAKE_COMMAND}" -E touch "${bundle_stamp}"
        DEPENDS "${CMAKE_BINARY_DIR}/share/resources.stamp"
        COMMENT "Resources of ${target}"
        VERBATIM)
    add_custom_target(${target}_resources DEPENDS "${bundle_stamp}")
    add_dependencies(${target}_resources ambrel_resources)
    add_dependencies(${target} ${target}_resources)
endfunction()
