# cpack: a Debian package and a tarball of the same files.
include(GNUInstallDirs)
install(FILES LICENSE README.md DESTINATION ${CMAKE_INSTALL_DOCDIR})

set(CPACK_GENERATOR DEB TGZ)
set(CPACK_PACKAGE_NAME ravik)
set(CPACK_PACKAGE_VENDOR "the Ravik authors")
set(CPACK_PACKAGE_CONTACT "the Ravik authors")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "Tells what is slowing this computer, and what can safely be done about it")
set(CPACK_RESOURCE_FILE_LICENSE ${PROJECT_SOURCE_DIR}/LICENSE)
set(CPACK_STRIP_FILES ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Loaded at run time, so no link tells of it.
set(CPACK_DEBIAN_PACKAGE_DEPENDS "libarchive13 | libarchive13t64")
include(CPack)
