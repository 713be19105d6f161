# SPDX-License-Identifier: GPL-3.0-or-later
# Gives every file that is about to be packed the time of the release, so that the same files are the same package.
if(DEFINED ENV{SOURCE_DATE_EPOCH})
    execute_process(COMMAND find ${CPACK_TEMPORARY_DIRECTORY} -exec touch -h -d @$ENV{SOURCE_DATE_EPOCH} {} +
                    COMMAND_ERROR_IS_FATAL ANY)
endif()
