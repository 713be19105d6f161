# SPDX-License-Identifier: GPL-3.0-or-later
# Read by CPack once per kind of package. The tar ball is one file, in a folder of its own.
set(CPACK_COMPONENTS_ALL plugin data doc)
if(CPACK_GENERATOR STREQUAL "TGZ")
    set(CPACK_PACKAGE_FILE_NAME orvane-kestrum-${CPACK_PACKAGE_VERSION}-linux-x86_64)
else()
    set(CPACK_PACKAGING_INSTALL_PREFIX /usr)
endif()
