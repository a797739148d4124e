# The Debian package, built by CPack from the install rules (`make package`
# configures the "package" preset and runs cpack in build-package/).
#
# Its dependencies are computed from the shared libraries the programs link
# (dpkg-shlibdeps). It has no maintainer scripts: installing registers
# nothing with the browsers, which stays the user's choice in the setup
# assistant or with `lumenote-cli browser register`, and removing it leaves
# each user's data and manifests alone.

# What every Debian package carries in its documentation folder: the
# copyright file and the changelog, compressed the reproducible way.
# The changelog's newest entry must be this version: dpkg and lintian read it.
file(STRINGS ${PROJECT_SOURCE_DIR}/packaging/debian/changelog changelog_head LIMIT_COUNT 1)
if(NOT changelog_head MATCHES "^lumenote \\(${PROJECT_VERSION}\\) ")
  message(FATAL_ERROR "packaging/debian/changelog does not begin with version ${PROJECT_VERSION}")
endif()
set(LUMENOTE_DOC_FOLDER ${CMAKE_INSTALL_DATADIR}/doc/lumenote)
set(LUMENOTE_CHANGELOG ${CMAKE_BINARY_DIR}/packaging/changelog.gz)
add_custom_command(
  OUTPUT ${LUMENOTE_CHANGELOG}
  COMMAND ${CMAKE_COMMAND} -E make_directory ${CMAKE_BINARY_DIR}/packaging
  COMMAND sh -c "gzip -9nc \"$0\" > \"$1\"" ${PROJECT_SOURCE_DIR}/packaging/debian/changelog
          ${LUMENOTE_CHANGELOG}
  DEPENDS ${PROJECT_SOURCE_DIR}/packaging/debian/changelog
  COMMENT "Compressing the package's changelog" VERBATIM)
add_custom_target(package-changelog ALL DEPENDS ${LUMENOTE_CHANGELOG})
install(FILES ${PROJECT_SOURCE_DIR}/packaging/debian/copyright ${LUMENOTE_CHANGELOG}
        DESTINATION ${LUMENOTE_DOC_FOLDER})

set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME lumenote)
set(CPACK_PACKAGE_VENDOR Tallywise)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "study session recorder that keeps everything local")
# The extended description: CPack puts the summary above it, indents each
# line and marks the empty line between the paragraphs.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "Lumenote records study sessions on this computer: what is studied, which
application, website or PDF is in front, and how long no input came. Each
stretch becomes a classified segment; at the end a versioned calculation
gives the totals and a focus score.

It comes with a tray application, a terminal recorder, a replay of every
session, weekly insights, exports, verified backups and a browser
extension with its native-messaging host. Nothing leaves the computer: no
account, no server, no telemetry.")
set(CPACK_DEBIAN_PACKAGE_MAINTAINER "Lumenote developers <lumenote@tallywise.com>")
set(CPACK_DEBIAN_PACKAGE_HOMEPAGE "https://tallywise.com/lumenote/")
set(CPACK_DEBIAN_PACKAGE_SECTION utils)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
# Qt loads the SVG icon engine (the tray's and the window's icons) as a
# plugin at run time, so no linked library names its package.
set(CPACK_DEBIAN_PACKAGE_DEPENDS libqt6svg6)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "firefox-esr | chromium")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
set(CPACK_STRIP_FILES ON)
set(CPACK_SOURCE_IGNORE_FILES /build /\\.git/ /node_modules/)
include(CPack)
