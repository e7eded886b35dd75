# Run by cpack behind the installation into its folder and before the package is made: adds what only one kind of
# package has. A .deb wants a changelog of the packaging; the .tar.gz has a script that puts its files in place.

set(tree "${CPACK_TEMPORARY_INSTALL_DIRECTORY}")

if(CPACK_GENERATOR STREQUAL "DEB")
    set(changelog "${tree}/usr/${CPACK_AMBREL_DOCUMENTS}/changelog.Debian")
    file(WRITE "${changelog}"
"ambrel (${CPACK_PACKAGE_VERSION}-${CPACK_DEBIAN_PACKAGE_RELEASE}) unstable; urgency=medium

  * Release ${CPACK_PACKAGE_VERSION}; changelog.gz tells what is new.

 -- ${CPACK_PACKAGE_CONTACT}  ${CPACK_AMBREL_DATE}
")
    execute_process(COMMAND gzip -9 -n -f "${changelog}" COMMAND_ERROR_IS_FATAL ANY)
elseif(CPACK_GENERATOR STREQUAL "TGZ")
    file(INSTALL "${CPACK_AMBREL_SOURCE}/packaging/linux/install" DESTINATION "${tree}" USE_SOURCE_PERMISSIONS)
    set(documents "${tree}/${CPACK_AMBREL_DOCUMENTS}")
    configure_file("${CPACK_AMBREL_SOURCE}/LICENSE" "${documents}/GPL-3" COPYONLY)
    configure_file("${CPACK_AMBREL_SOURCE}/resources/fonts/roboto/LICENSE.txt" "${documents}/Apache-2.0" COPYONLY)
endif()
