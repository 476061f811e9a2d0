# The Debian package, for cpack.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME skylet)
set(CPACK_PACKAGE_VENDOR Corvane)
set(CPACK_PACKAGE_CONTACT "Skylet maintainers <skylet@corvane.com>")
set(CPACK_PACKAGE_DIRECTORY ${CMAKE_BINARY_DIR})
set(CPACK_STRIP_FILES ON)

# Staged below DESTDIR, so that installed files see the prefix that they will have.
set(CPACK_SET_DESTDIR ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_INSTALL_CMAKE_PROJECTS
    "${CMAKE_BINARY_DIR};${PROJECT_NAME};ALL;/;${CMAKE_BINARY_DIR};${PROJECT_NAME};debian;/")

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION x11)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE ${PROJECT_HOMEPAGE_URL})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY ${PROJECT_DESCRIPTION})
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
"Skylet pins a window of another application: a live picture of it floats
above everything else and follows the window. Clicks and scrolling on the
picture reach the window behind without bringing it to the front.

It works in an X11 session under any window manager, with or without a
compositor, and shows itself as an icon in the panel.")
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
# Without them it works, but: no scrolling through accessibility, no question for it, no activation from menus and
# no single icon over all panels, no page of the product in the browser, no actions in menus that know no buses.
string(JOIN ", " CPACK_DEBIAN_PACKAGE_RECOMMENDS
    at-spi2-core
    "notification-daemon"
    "default-dbus-session-bus | dbus-session-bus"
    xdg-utils
    libglib2.0-bin)

include(CPack)
