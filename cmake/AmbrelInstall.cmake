# Where everything goes on a Linux system, and the packages made from it: a .deb and a .tar.gz, by cpack.
#
#   lib/vst3, lib/lv2, lib/vst    the plug-ins, where hosts look; each bundle holds its presets, translations and help
#   bin                           the stand-alone program and the renderer
#   share/Ambrel                  presets, translations and help of these two
#   share/...                     desktop entry, icon, descriptions for software centres, manual pages, licences
#
# "lib" is meant as it stands: hosts do not look in the folders of one architecture.

# Changes with the version.
set(AMBREL_RELEASE_DATE "2026-11-21")

set(packaging "${Ambrel_SOURCE_DIR}/packaging/linux")
set(package_files "${CMAKE_BINARY_DIR}/packaging")
set(document_folder share/doc/ambrel)

# -- Programs and plug-ins

install(TARGETS Ambrel_Standalone ambrel-render RUNTIME DESTINATION bin)

# A preset that is gone from the sources must not stay behind in a bundle from an earlier installation.
set(bundles lib/vst3/Ambrel.vst3 lib/lv2/Ambrel.lv2 lib/vst/Ambrel share/Ambrel)
install(CODE "
    foreach(bundle ${bundles})
        file(REMOVE_RECURSE \"\$ENV{DESTDIR}\${CMAKE_INSTALL_PREFIX}/\${bundle}\")
    endforeach()")

get_target_property(vst3_binaries Ambrel_VST3 LIBRARY_OUTPUT_DIRECTORY)
cmake_path(GET vst3_binaries FILENAME architecture)
install(TARGETS Ambrel_VST3 LIBRARY DESTINATION "lib/vst3/Ambrel.vst3/Contents/${architecture}")
install(TARGETS Ambrel_LV2 LIBRARY DESTINATION lib/lv2/Ambrel.lv2)
install(DIRECTORY "$<TARGET_FILE_DIR:Ambrel_LV2>/" DESTINATION lib/lv2/Ambrel.lv2
    FILES_MATCHING PATTERN "*.ttl" PATTERN Contents EXCLUDE)
if(TARGET Ambrel_VST)
    install(TARGETS Ambrel_VST LIBRARY DESTINATION lib/vst/Ambrel)
else()
    list(REMOVE_ITEM bundles lib/vst/Ambrel)
endif()
foreach(bundle ${bundles})
    if(bundle MATCHES "^lib/")
        string(APPEND bundle "/Contents/Resources")
    endif()
    install(DIRECTORY "${AMBREL_RESOURCES}/" DESTINATION "${bundle}")
endforeach()

# -- Desktop, software centres, manual pages

foreach(file com.veskora.Ambrel.metainfo.xml com.veskora.Ambrel.plugins.metainfo.xml ambrel-render.1 Ambrel.1)
    configure_file("${packaging}/${file}.in" "${package_files}/${file}" @ONLY)
endforeach()
configure_file("${Ambrel_SOURCE_DIR}/CHANGELOG.md" "${package_files}/changelog" COPYONLY)

# Compressed without name and time, so that two builds give the same bytes.
find_program(AMBREL_GZIP gzip REQUIRED)
set(compressed)
foreach(file ambrel-render.1 Ambrel.1 changelog)
    add_custom_command(OUTPUT "${package_files}/${file}.gz"
        COMMAND "${AMBREL_GZIP}" -9 -n -k -f "${package_files}/${file}"
        DEPENDS "${package_files}/${file}"
        VERBATIM)
    list(APPEND compressed "${package_files}/${file}.gz")
endforeach()
add_custom_target(ambrel_documents ALL DEPENDS ${compressed})

install(FILES "${packaging}/com.veskora.Ambrel.desktop" DESTINATION share/applications)
install(FILES "${packaging}/com.veskora.Ambrel.svg" DESTINATION share/icons/hicolor/scalable/apps)
install(FILES "${package_files}/com.veskora.Ambrel.metainfo.xml"
    "${package_files}/com.veskora.Ambrel.plugins.metainfo.xml" DESTINATION share/metainfo)
install(FILES "${package_files}/ambrel-render.1.gz" "${package_files}/Ambrel.1.gz" DESTINATION share/man/man1)
install(FILES "${packaging}/copyright" "${package_files}/changelog.gz" DESTINATION "${document_folder}")

# -- Packages

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_NAME ambrel)
set(CPACK_PACKAGE_VENDOR "Veskora")
set(CPACK_PACKAGE_CONTACT "Veskora <support@veskora.com>")
set(CPACK_PACKAGE_HOMEPAGE_URL "https://veskora.com")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Reverb with two controls, as plug-in and program")
set(CPACK_PACKAGE_DESCRIPTION
"Character goes from a small, bright room to a large, dark one; Mix goes from
all dry to all wet. Behind the two controls works a complete reverb engine
without latency, whose 26 parameters presets reach.

The package holds the reverb as VST3, LV2 and VST2 plug-ins, as a program of
its own for live sound, and as a command-line renderer for files.")
set(CPACK_STRIP_FILES ON)
set(CPACK_RESOURCE_FILE_LICENSE "${Ambrel_SOURCE_DIR}/LICENSE")
set(CPACK_PACKAGE_FILE_NAME "ambrel-${Ambrel_VERSION}-linux-${CMAKE_SYSTEM_PROCESSOR}")
set(CPACK_PACKAGE_CHECKSUM SHA256)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# JUCE opens these when a window opens. The first two it cannot do without; the others serve cursors and screens.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libx11-6, libxext6")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "libxcursor1, libxinerama1, libxrandr2, libxrender1")

# What belongs to one kind of package only is added when that package is made.
set(CPACK_AMBREL_SOURCE "${Ambrel_SOURCE_DIR}")
set(CPACK_AMBREL_DOCUMENTS "${document_folder}")
execute_process(COMMAND date --utc --rfc-email "--date=${AMBREL_RELEASE_DATE}"
    OUTPUT_VARIABLE CPACK_AMBREL_DATE OUTPUT_STRIP_TRAILING_WHITESPACE COMMAND_ERROR_IS_FATAL ANY)
set(CPACK_PRE_BUILD_SCRIPTS "${Ambrel_SOURCE_DIR}/cmake/CompletePackage.cmake")
include(CPack)
