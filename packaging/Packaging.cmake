# Installation in the layout Linux games use, and the Debian package built from it with CPack
# (`make package`, or the `package` target of any build directory).
#
#   <prefix>/games/nightvector                  launcher: prepares the player's directory and
#                                               starts the game there
#   <prefix>/lib/games/nightvector/nightvector  the program; kept off the games path because the
#                                               launcher owns the name `nightvector` there
#   <prefix>/share/games/nightvector/           gfx/, sfx/ and shaders/
#   <prefix>/share/applications, share/icons/hicolor, share/man/man6, share/doc/nightvector

set(NIGHTVECTOR_GAMES_DIR games)
set(NIGHTVECTOR_PROGRAM_DIR lib/games/nightvector)
set(NIGHTVECTOR_DATA_DIR share/games/nightvector)
set(NIGHTVECTOR_DOC_DIR share/doc/nightvector)
set(NIGHTVECTOR_ICON_SIZES 64 128 256)

set(PACKAGING_SOURCE ${PROJECT_SOURCE_DIR}/packaging)
set(PACKAGING_BINARY ${PROJECT_BINARY_DIR}/packaging)


# The launcher climbs from its own directory to the prefix, so an unpacked package works anywhere.
file(RELATIVE_PATH NIGHTVECTOR_PREFIX_FROM_GAMES /prefix/${NIGHTVECTOR_GAMES_DIR} /prefix)
configure_file(${PACKAGING_SOURCE}/nightvector.in ${PACKAGING_BINARY}/nightvector @ONLY)

# Manual page and changelog go in compressed at the highest level and without a time stamp,
# as Debian asks, so equal sources give equal files. The package is built here, not from a
# separate upstream release, so its changelog is changelog.gz, not changelog.Debian.gz.
add_custom_command(
    OUTPUT ${PACKAGING_BINARY}/nightvector.6.gz
    COMMAND gzip -9 -n -c ${PACKAGING_SOURCE}/nightvector.6 > ${PACKAGING_BINARY}/nightvector.6.gz
    DEPENDS ${PACKAGING_SOURCE}/nightvector.6
    VERBATIM)
add_custom_command(
    OUTPUT ${PACKAGING_BINARY}/changelog.gz
    COMMAND gzip -9 -n -c ${PACKAGING_SOURCE}/changelog > ${PACKAGING_BINARY}/changelog.gz
    DEPENDS ${PACKAGING_SOURCE}/changelog
    VERBATIM)
add_custom_target(packaging_files ALL
    DEPENDS ${PACKAGING_BINARY}/nightvector.6.gz ${PACKAGING_BINARY}/changelog.gz)

set(NIGHTVECTOR_FILE_MODE OWNER_READ OWNER_WRITE GROUP_READ WORLD_READ)
set(NIGHTVECTOR_PROGRAM_MODE
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)

install(TARGETS nightvector RUNTIME DESTINATION ${NIGHTVECTOR_PROGRAM_DIR}
        PERMISSIONS ${NIGHTVECTOR_PROGRAM_MODE})
install(PROGRAMS ${PACKAGING_BINARY}/nightvector DESTINATION ${NIGHTVECTOR_GAMES_DIR})
install(DIRECTORY ${PROJECT_SOURCE_DIR}/gfx ${PROJECT_SOURCE_DIR}/sfx ${PROJECT_SOURCE_DIR}/shaders
        DESTINATION ${NIGHTVECTOR_DATA_DIR}
        FILE_PERMISSIONS ${NIGHTVECTOR_FILE_MODE} DIRECTORY_PERMISSIONS ${NIGHTVECTOR_PROGRAM_MODE})
install(FILES ${PACKAGING_SOURCE}/nightvector.desktop DESTINATION share/applications
        PERMISSIONS ${NIGHTVECTOR_FILE_MODE})
install(FILES ${PACKAGING_SOURCE}/org.example.nightvector.metainfo.xml DESTINATION share/metainfo
        PERMISSIONS ${NIGHTVECTOR_FILE_MODE})
foreach(size IN LISTS NIGHTVECTOR_ICON_SIZES)
    install(FILES ${PACKAGING_SOURCE}/icons/nightvector_${size}.png
            DESTINATION share/icons/hicolor/${size}x${size}/apps RENAME nightvector.png
            PERMISSIONS ${NIGHTVECTOR_FILE_MODE})
endforeach()
install(FILES ${PACKAGING_BINARY}/nightvector.6.gz DESTINATION share/man/man6
        PERMISSIONS ${NIGHTVECTOR_FILE_MODE})
install(FILES ${PACKAGING_SOURCE}/copyright ${PACKAGING_BINARY}/changelog.gz
        DESTINATION ${NIGHTVECTOR_DOC_DIR} PERMISSIONS ${NIGHTVECTOR_FILE_MODE})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nightvector)
set(CPACK_PACKAGE_VERSION ${NIGHTVECTOR_VERSION})
set(CPACK_PACKAGE_CONTACT "Nightvector developers <nightvector@example.org>"
    CACHE STRING "Maintainer of the Debian package, as \"Name <address>\"")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "neon space shooter against endless waves")
# One string: separate arguments would reach the control file joined by semicolons.
set(CPACK_PACKAGE_DESCRIPTION "\
Nightvector is a single-player, real-time 2D space shooter. You fly a ship
over a wrapping world in front of a drifting nebula and a parallax starfield,
aim with the mouse and fight waves of seven enemy types with a plasma gun and
a laser. Destroyed enemies pay score and drop powerups.

The game runs full screen at 1280x720 with OpenGL and needs a graphics
driver with GLSL shaders and framebuffer objects.")
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS ${NIGHTVECTOR_PROGRAM_MODE})
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_SECTION games)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
