# SPDX-License-Identifier: GPL-3.0-or-later
# What our own files are compiled with; foreign sources (the framework's modules) never link these targets' flags.
#   kestrum::numerics         flags that decide results and the module's symbols; for every file that ends in the bundle
#   kestrum::compile_options  numerics plus the warnings, as errors
add_library(kestrum_numerics INTERFACE)
add_library(kestrum::numerics ALIAS kestrum_numerics)
# Contraction and fast-math change sums from machine to machine; unique symbols keep a module from being unloaded.
target_compile_options(kestrum_numerics INTERFACE -ffp-contract=off $<$<CXX_COMPILER_ID:GNU>:-fno-gnu-unique>)

add_library(kestrum_compile_options INTERFACE)
add_library(kestrum::compile_options ALIAS kestrum_compile_options)
target_link_libraries(kestrum_compile_options INTERFACE kestrum::numerics)
target_compile_options(kestrum_compile_options INTERFACE
    -Wall -Wextra -Wpedantic -Wconversion -Wsign-conversion -Wold-style-cast -Werror
    $<$<CXX_COMPILER_ID:GNU>:-Wshadow=local> $<$<CXX_COMPILER_ID:Clang>:-Wshadow>
    # GCC 12 sees an overlap in any "text" + string once it is optimised (its bug 105651).
    $<$<CXX_COMPILER_ID:GNU>:-Wno-restrict>)
