# SPDX-License-Identifier: GPL-3.0-or-later
# Run by CPack when everything to be packed lies in its temporary folder.
if(CPACK_GENERATOR STREQUAL "TGZ") # the installer, which nothing but the tar ball has, and what it is to install
    file(REMOVE_RECURSE ${CPACK_TEMPORARY_DIRECTORY}/share/lintian)
    file(GLOB_RECURSE files LIST_DIRECTORIES false RELATIVE ${CPACK_TEMPORARY_DIRECTORY} ${CPACK_TEMPORARY_DIRECTORY}/*)
    list(SORT files)
    list(JOIN files "\n" files)
    file(WRITE ${CPACK_TEMPORARY_DIRECTORY}/file-list "${files}\n")
    file(INSTALL ${CMAKE_CURRENT_LIST_DIR}/install.sh DESTINATION ${CPACK_TEMPORARY_DIRECTORY} USE_SOURCE_PERMISSIONS)
    configure_file(${CMAKE_CURRENT_LIST_DIR}/../../docs/packages.md ${CPACK_TEMPORARY_DIRECTORY}/README.md COPYONLY)
endif()

# The time of the release for every file, so that the same files are the same package.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch -h -d @$ENV{SOURCE_DATE_EPOCH} {} +
                    COMMAND_ERROR_IS_FATAL ANY)
endif()
