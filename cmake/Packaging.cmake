# The Debian package made by `cpack -G DEB` (see `make deb`): the program and
# its manual page under /usr, with the shared-library dependencies computed
# by dpkg-shlibdeps from the binary itself.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nbtext)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "nbtext maintainers <maintainers@users.noreply.c-seed-45cd178f.example>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY
    "convert notebook documents to plain text or HTML for search indexers")
# The summary is the package's one-line synopsis; this is the text under it.
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION
    "nbtext reads notebook documents, text files holding one Notebook[...]
expression of cells with typeset boxes, and writes what a reader sees on
their pages: plain UTF-8 text, or with -html one self-contained HTML page.
Search indexers such as Recoll and Xapian Omega's omindex run it once per
document as an external filter.")
set(CPACK_DEBIAN_PACKAGE_SECTION text)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_SUGGESTS "recollcmd | xapian-omega")
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# Debug information names the build tree; the package carries none of it.
set(CPACK_STRIP_FILES ON)
if(CMAKE_CROSSCOMPILING AND CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()
include(CPack)
