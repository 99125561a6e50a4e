# `make package`: a Debian package of what `cmake --install` puts in place, under /usr.
set(CPACK_GENERATOR DEB)
set(CPACK_PACKAGE_NAME pulsara)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_VENDOR Orvane)
set(CPACK_PACKAGE_CONTACT "Orvane <pulsara@orvane.invalid>")
set(CPACK_PACKAGE_DESCRIPTION_SUMMARY "pattern-based music sequencer and sampler")
set(CPACK_DEBIAN_PACKAGE_DESCRIPTION "pattern-based music sequencer and sampler
 Pulsara plays up to 40 WAV samples as instruments from notes entered on a step grid in up to 40
 patterns, arranged over 256 song positions in a playlist. Songs play with a loop range or live
 from the computer's keyboard, are saved in Pulsara's own files and export to 16-bit WAV.")
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
# The libraries the program links come from dpkg-shlibdeps; the typeface its texts are drawn in
# and the desktop's caches are needed besides.
set(CPACK_DEBIAN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PACKAGE_DEPENDS "fonts-liberation2")
set(CPACK_DEBIAN_PACKAGE_RECOMMENDS "shared-mime-info, desktop-file-utils")
set(CPACK_DEBIAN_PACKAGE_CONTROL_EXTRA "${CMAKE_CURRENT_LIST_DIR}/debian/postinst;${CMAKE_CURRENT_LIST_DIR}/debian/postrm")
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
include(CPack)
