# The Debian package that CPack makes of what cmake --install would install.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME quorvane)
set(CPACK_PACKAGE_VENDOR "Orbelt - Mirando")
set(CPACK_PACKAGE_CONTACT "Orbelt - Mirando <${QUORVANE_SUPPORT_ADDRESS}>")
set(CPACK_PACKAGE_HOMEPAGE_URL "${QUORVANE_PRODUCT_PAGE}")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "rich-text editor that keeps its documents encrypted")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Documents of this editor exist on disk only in encrypted form. A document has
a master password; its text leaves the memory as AES ciphertext and in no
other way. A locked document is a small window with a password field.
.
Fonts, styles, lists, tables, links, pictures and attachments are kept. Plain
text, RTF and RTFD can be imported and exported.
.
quorvane-cli does the same from a terminal, for scripts and backups.")
set(CPACK_PACKAGE_DIRECTORY "${PROJECT_BINARY_DIR}/package")
set(CPACK_PACKAGING_INSTALL_PREFIX "${CMAKE_INSTALL_PREFIX}")
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION editors)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Fonts that are there; a bus for the one running program; what opens pages and the guide.
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS
    "default-dbus-session-bus | dbus-session-bus, desktop-file-utils, fonts-dejavu-core, qt6-wayland, xdg-utils")
set(CPACK_DEBIAN_PACKAGE_SUGGESTS python3) # for the reader among the examples
set(QUORVANE_DEBIAN_FOLDER "${CMAKE_CURRENT_LIST_DIR}")
set(CPACK_PRE_BUILD_SCRIPTS "${CMAKE_CURRENT_BINARY_DIR}/finish.cmake")
configure_file(${CMAKE_CURRENT_LIST_DIR}/finish.cmake.in finish.cmake @ONLY)
include(CPack)
