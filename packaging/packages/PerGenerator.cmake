# SPDX-License-Identifier: GPL-3.0-or-later
# Read by CPack once per kind of package. The tar ball is one file with its installer, in a folder of its own.
if(CPACK_GENERATOR STREQUAL "TGZ")
    set(CPACK_COMPONENTS_ALL plugin data doc tarball)
    set(CPACK_PACKAGE_FILE_NAME orvane-kestrum-${CPACK_PACKAGE_VERSION}-linux-x86_64)
else()
    set(CPACK_COMPONENTS_ALL plugin data doc)
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
endif()
