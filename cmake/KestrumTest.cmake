# SPDX-License-Identifier: GPL-3.0-or-later
# kestrum_test(<name> SOURCES ... LINK ... [LABELS ...] [LOCK <resource>] [TIMEOUT <seconds>])
# One GoogleTest program; every test case becomes a CTest entry "<name>.<Suite>.<Case>". Tests that share something
# global of the machine (the rotation segment) name it as LOCK and run one at a time.
function(kestrum_test name)
    cmake_parse_arguments(arg "" "LOCK;TIMEOUT" "SOURCES;LINK;LABELS" ${ARGN})
    add_executable(${name}_tests ${arg_SOURCES})
    target_link_libraries(${name}_tests PRIVATE kestrum::compile_options kestrum::test_support ${arg_LINK}
                                                GTest::gmock GTest::gtest_main)
    set(properties LABELS "${name};${arg_LABELS}")
    if(arg_LOCK)
        list(APPEND properties RESOURCE_LOCK ${arg_LOCK})
    endif()
    if(arg_TIMEOUT)
        list(APPEND properties TIMEOUT ${arg_TIMEOUT})
    endif()
    gtest_discover_tests(${name}_tests TEST_PREFIX ${name}. DISCOVERY_MODE PRE_TEST DISCOVERY_TIMEOUT 60
                         PROPERTIES ${properties})
endfunction()
