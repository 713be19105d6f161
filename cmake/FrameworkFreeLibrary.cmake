# SPDX-License-Identifier: GPL-3.0-or-later
# kestrum_library(<alias> SOURCES ... HEADERS ... [LINK ...] [PRIVATE_LINK ...])
# One static library per folder of src/; <alias> is "orvane::filters" and the like, the target "orvane_filters".
# Headers are given relative to the calling folder and included from src/: "filters/IBiquadFilter.h".
function(kestrum_library alias)
    cmake_parse_arguments(arg "" "" "SOURCES;HEADERS;LINK;PRIVATE_LINK" ${ARGN})
    string(REPLACE "::" "_" target ${alias})
    if(arg_SOURCES)
        add_library(${target} STATIC ${arg_SOURCES})
        set(scope PUBLIC)
        target_link_libraries(${target} PRIVATE kestrum::compile_options ${arg_PRIVATE_LINK})
    else()
        add_library(${target} INTERFACE)
        set(scope INTERFACE)
    endif()
    add_library(${alias} ALIAS ${target})
    target_sources(${target} ${scope} FILE_SET HEADERS BASE_DIRS ${PROJECT_SOURCE_DIR}/src FILES ${arg_HEADERS})
    target_link_libraries(${target} ${scope} ${arg_LINK})
endfunction()
