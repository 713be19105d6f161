# SPDX-License-Identifier: GPL-3.0-or-later
# kestrum_test(<name> SOURCES ... LINK ... [LABELS ...] [THREADED <gtest filter>] [SERIAL] [TIMEOUT <seconds, 300>])
# One GoogleTest program; every test case becomes a CTest entry "<name>.<Suite>.<Case>", under a sanitizer the whole
# program "<name>": three thousand starts of a process that maps its shadow are minutes. SERIAL tests run
# alone. THREADED are the cases with more than one thread, where they are few: ThreadSanitizer has nothing to see in the others,
# and they are minutes. Those that use the machine's one rotation segment get shared memory of their own: support/PrivateMemory.cpp.
# No test meets a screen that it has not made: without the variable, the framework looks for the machine's first one,
# which may be another test's and end any moment.
function(kestrum_test name)
    cmake_parse_arguments(arg "SERIAL" "TIMEOUT;THREADED" "SOURCES;LINK;LABELS" ${ARGN})
    add_executable(${name}_tests ${arg_SOURCES})
    target_link_libraries(${name}_tests PRIVATE kestrum::compile_options kestrum::test_support ${arg_LINK}
                                                GTest::gmock GTest::gtest_main)
    # What is tested keeps its own flags; tests are compiled for the time that compiling them takes, UBSan doubles it.
    if(KESTRUM_SANITIZER MATCHES "undefined")
        target_compile_options(${name}_tests PRIVATE -fno-sanitize=undefined)
    elseif(NOT KESTRUM_SANITIZER)
        target_compile_options(${name}_tests PRIVATE $<$<CONFIG:Release>:-O1>)
    endif()
    # One label, such as "engine_life-slow", since discovery takes a list of labels apart; ctest matches parts of it.
    string(JOIN "-" label ${name} ${arg_LABELS})
    set(properties LABELS ${label} ENVIRONMENT DISPLAY=none)
    if(arg_SERIAL)
        list(APPEND properties RUN_SERIAL TRUE)
    endif()
    if(arg_TIMEOUT)
        list(APPEND properties TIMEOUT ${arg_TIMEOUT})
    elseif(NOT KESTRUM_SANITIZER)
        list(APPEND properties TIMEOUT 300) # a case that hangs is to be told of soon
    endif()
    if(KESTRUM_SANITIZER)
        set(cases)
        if(arg_THREADED AND KESTRUM_SANITIZER STREQUAL "thread")
            set(cases --gtest_filter=${arg_THREADED})
            list(APPEND properties FAIL_REGULAR_EXPRESSION "Running 0 tests")
        endif()
        add_test(NAME ${name} COMMAND ${name}_tests ${cases})
        set_tests_properties(${name} PROPERTIES ${properties})
    else()
        gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                             PROPERTIES ${properties})
    endif()
endfunction()

# kestrum_release_test(<proof> <words-with-dashes> PROGRAM <name> FILTER <gtest filter> [ENVIRONMENT NAME=value ...]
#                      [TIMEOUT <seconds>] [SERIAL])
# A row of "./test --release": cases of the test program <name> at the counts of a release, as one CTest entry
# "release.<proof>.<words>" with the label "release", which the ordinary test presets leave out. <proof> has two digits: the
# row of docs/reliability.md. What the case prints as "figure: ..." stands in the table of rows.
function(kestrum_release_test proof words)
    cmake_parse_arguments(arg "SERIAL" "PROGRAM;FILTER;TIMEOUT" "ENVIRONMENT" ${ARGN})
    set(test release.${proof}.${words})
    add_test(NAME ${test} COMMAND ${arg_PROGRAM}_tests --gtest_filter=${arg_FILTER})
    if(NOT arg_TIMEOUT)
        set(arg_TIMEOUT 3600)
    endif()
    # A filter that meets no case, and a case that is left out, prove nothing.
    set_tests_properties(${test} PROPERTIES LABELS release ENVIRONMENT "DISPLAY=none;${arg_ENVIRONMENT}" TIMEOUT ${arg_TIMEOUT}
        FAIL_REGULAR_EXPRESSION "Running 0 tests;  SKIPPED " RUN_SERIAL ${arg_SERIAL})
endfunction()
