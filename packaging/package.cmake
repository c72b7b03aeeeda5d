# The Debian package; tools/make_package builds it.

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME gainsmith)
set(CPACK_PACKAGE_VENDOR Torvane)
set(CPACK_PACKAGE_CONTACT "Torvane Gainsmith maintainers <gainsmith@torvane.example>")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES TRUE)
set(CPACK_VERBATIM_VARIABLES TRUE)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${CMAKE_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS})
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_LIST_DIR}/debian_documents.cmake)

set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_SECTION electronics)
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE https://www.torvane.example/)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS TRUE)
# The parameters grid keeps its rows in SQLite through a plug-in that no library names.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt6sql6-sqlite)
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "fonts-dejavu-core, fonts-droid-fallback, qt6-wayland")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "tune and watch the KVT518 AC servo drive
Torvane Gainsmith connects a computer to a KVT518 digital AC servo drive over
a serial line. It reads and keeps the drive's settings, tunes its current,
velocity and position loops with step tests and live traces, watches it in a
scope with a spectrum, and reads its error log.
.
A simulated drive, kvt518-sim, is part of the package: all of this can be
tried without any hardware.")

# For debian_documents.cmake, which runs when the package is made.
set(CPACK_GAINSMITH_DATE ${GAINSMITH_RELEASE_DATE})
set(CPACK_GAINSMITH_COPYRIGHT ${CMAKE_CURRENT_LIST_DIR}/copyright)
include(CPack)
