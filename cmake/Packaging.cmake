# The manual page and the package's documents, compressed as Debian wants
# them (gzip -9n: no name or time inside, the same bytes from every build).
find_program(GZIP_PROGRAM gzip REQUIRED)
function(nbtext_gzipped source name destination)
  set(copy ${CMAKE_CURRENT_BINARY_DIR}/gzipped/${name})
  add_custom_command(OUTPUT ${copy}.gz
    COMMAND ${CMAKE_COMMAND} -E copy ${CMAKE_CURRENT_SOURCE_DIR}/${source} ${copy}
    COMMAND ${GZIP_PROGRAM} -9nf ${copy}
    DEPENDS ${source} VERBATIM)
  target_sources(nbtext_docs PRIVATE ${copy}.gz)
  install(FILES ${copy}.gz DESTINATION ${destination})
endfunction()
add_custom_target(nbtext_docs ALL)
nbtext_gzipped(docs/nbtext.1 nbtext.1 ${CMAKE_INSTALL_MANDIR}/man1)
nbtext_gzipped(packaging/changelog changelog ${CMAKE_INSTALL_DOCDIR})
install(FILES packaging/copyright DESTINATION ${CMAKE_INSTALL_DOCDIR})

# The Debian package made by `cpack -G DEB` (see `make deb`): the program,
# its manual page, copyright and changelog under /usr, with the
# shared-library dependencies computed by dpkg-shlibdeps from the binary.
set(NBTEXT_MAINTAINER "nbtext developers <nbtext-devel@lists.nbtext.org>" CACHE STRING
    "The Maintainer field of the Debian package: Name <address>")
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME nbtext)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "${NBTEXT_MAINTAINER}")
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
# Directories 0755 and the control files 0644/0755, as dpkg-deb builds them.
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
if(CMAKE_CROSSCOMPILING AND CMAKE_SYSTEM_PROCESSOR MATCHES "^arm")
  set(CPACK_DEBIAN_PACKAGE_ARCHITECTURE armhf)
endif()
include(CPack)
