# SPDX-License-Identifier: GPL-3.0-or-later
# Every foreign component, as an imported target with one name. All come from Debian 12.
find_package(Threads REQUIRED)
find_package(PkgConfig REQUIRED)

# Static and, in the module, with hidden symbols: another plug-in of the same process may use the shared
# library of the same name, whose planner is not safe to share.
function(kestrum_static_library target archive header)
    find_library(${target}_ARCHIVE ${archive} REQUIRED)
    find_path(${target}_INCLUDE ${header} REQUIRED)
    add_library(${target} STATIC IMPORTED GLOBAL)
    set_target_properties(${target} PROPERTIES
        IMPORTED_LOCATION ${${target}_ARCHIVE} INTERFACE_INCLUDE_DIRECTORIES ${${target}_INCLUDE})
endfunction()
kestrum_static_library(fftw3f_static libfftw3f.a fftw3.h)
kestrum_static_library(nettle_static libnettle.a nettle/sha2.h)

find_package(Boost 1.74 REQUIRED)

if(KESTRUM_BUILD_PLUGIN)
    find_package(JUCE 7.0.5 REQUIRED)
    # The framework as our files see it: its folder is a system include, so that our warnings pass it by.
    add_library(kestrum_framework INTERFACE)
    add_library(kestrum::framework ALIAS kestrum_framework)
    target_link_libraries(kestrum_framework INTERFACE juce::juce_audio_processors)
    target_include_directories(kestrum_framework SYSTEM INTERFACE ${JUCE_MODULES_DIR})
    target_compile_definitions(kestrum_framework INTERFACE
        JUCE_WEB_BROWSER=0 JUCE_USE_CURL=0 JUCE_VST3_CAN_REPLACE_VST2=0 JUCE_DISPLAY_SPLASH_SCREEN=0
        JUCE_MODAL_LOOPS_PERMITTED=1)
endif()
if(KESTRUM_BUILD_TOOLS)
    pkg_check_modules(sndfile REQUIRED IMPORTED_TARGET sndfile)
    pkg_check_modules(soxr REQUIRED IMPORTED_TARGET soxr)
    pkg_check_modules(mysofa REQUIRED IMPORTED_TARGET libmysofa)
    pkg_check_modules(ebur128 REQUIRED IMPORTED_TARGET libebur128)
    pkg_check_modules(lo REQUIRED IMPORTED_TARGET liblo)
    find_package(CLI11 REQUIRED)
endif()
if(KESTRUM_BUILD_PLUGIN AND KESTRUM_BUILD_TOOLS)
    find_package(X11 REQUIRED)
endif()
if(KESTRUM_BUILD_PLUGIN OR KESTRUM_BUILD_TOOLS)
    find_package(nlohmann_json REQUIRED)
endif()
if(KESTRUM_BUILD_TESTS AND KESTRUM_BUILD_PLUGIN AND KESTRUM_BUILD_TOOLS)
    find_package(PNG REQUIRED)
endif()
if(KESTRUM_BUILD_TESTS OR KESTRUM_BUILD_BENCHMARKS)
    find_package(GTest REQUIRED)
    include(GoogleTest)
endif()
if(KESTRUM_BUILD_BENCHMARKS)
    find_package(benchmark REQUIRED)
endif()
