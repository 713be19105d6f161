# SPDX-License-Identifier: GPL-3.0-or-later
# How CPack makes packages of the components; scripts/build-packages runs it.
set(CPACK_PACKAGE_NAME orvane-kestrum)
set(CPACK_PACKAGE_VENDOR Tenmarsh)
set(CPACK_PACKAGE_VERSION ${PROJECT_VERSION})
set(CPACK_PACKAGE_CONTACT "Tenmarsh <support@lorimond.example.org>")
set(CPACK_PACKAGE_DIRECTORY ${PROJECT_BINARY_DIR}/packages)
set(CPACK_STRIP_FILES ON)
# Whoever builds, and with whatever mask: the same folders.
set(CPACK_INSTALL_DEFAULT_DIRECTORY_PERMISSIONS
    OWNER_READ OWNER_WRITE OWNER_EXECUTE GROUP_READ GROUP_EXECUTE WORLD_READ WORLD_EXECUTE)
set(CPACK_PROJECT_CONFIG_FILE ${CMAKE_CURRENT_SOURCE_DIR}/PerGenerator.cmake)
set(CPACK_PRE_BUILD_SCRIPTS ${CMAKE_CURRENT_SOURCE_DIR}/BeforePacking.cmake)
set(CPACK_GENERATOR DEB TGZ)

set(CPACK_DEB_COMPONENT_INSTALL ON)
set(CPACK_DEBIAN_FILE_NAME DEB-DEFAULT)
set(CPACK_DEBIAN_PACKAGE_RELEASE 1)
set(CPACK_DEBIAN_PACKAGE_PRIORITY optional)
set(CPACK_DEBIAN_PACKAGE_SECTION sound)
set(CPACK_DEBIAN_PACKAGE_CONTROL_STRICT_PERMISSION ON)
set(CPACK_DEBIAN_COMPRESSION_TYPE gzip) # xz takes minutes for the noise of rooms and saves a twentieth
file(STRINGS debian/recommends recommends REGEX "^[^#]")
list(JOIN recommends ", " recommends)

set(CPACK_DEBIAN_PLUGIN_PACKAGE_NAME orvane-kestrum)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_SHLIBDEPS ON)
set(CPACK_DEBIAN_PLUGIN_PACKAGE_DEPENDS "orvane-kestrum-data (>= ${PROJECT_VERSION})")
set(CPACK_DEBIAN_PLUGIN_PACKAGE_RECOMMENDS "orvane-kestrum-doc, ${recommends}")
set(CPACK_DEBIAN_PLUGIN_PACKAGE_SUGGESTS "gnuplot-nox | gnuplot, parallel")
set(CPACK_COMPONENT_PLUGIN_DESCRIPTION "virtual loudspeakers on headphones (VST3)
A VST3 effect that turns every channel of a bus, from mono to 13.1 with
heights, into a virtual loudspeaker, heard on headphones through a measured
head in one of sixteen rooms.

With it comes kestrum, a program that renders files through the plug-in
without a host, makes data for personal heads, and finds out what an
installation lacks.")

set(CPACK_DEBIAN_DATA_PACKAGE_NAME orvane-kestrum-data)
set(CPACK_DEBIAN_DATA_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DATA_PACKAGE_CONTROL_EXTRA
    "${CMAKE_CURRENT_SOURCE_DIR}/debian/postinst;${CMAKE_CURRENT_SOURCE_DIR}/debian/postrm")
set(CPACK_COMPONENT_DATA_DESCRIPTION "measured head and rooms for Orvane KESTRUM
The responses of the dummy head KEMAR, as measured by the MIT Media
Laboratory, and the late reverb of 46 rooms for it, at three sample rates.
Sets of one's own lie beside it; \\\"kestrum data use\\\" chooses, and upgrades keep
the choice.")

set(CPACK_DEBIAN_DOC_PACKAGE_NAME orvane-kestrum-doc)
set(CPACK_DEBIAN_DOC_PACKAGE_ARCHITECTURE all)
set(CPACK_DEBIAN_DOC_PACKAGE_SECTION doc)
set(CPACK_COMPONENT_DOC_DESCRIPTION "manual and examples for Orvane KESTRUM
The manual as a PDF, which the help menu of the plug-in opens, pages about the
companion commands, and examples: automation, and a folder of mixes rendered by
several processes at once.")
include(CPack)
