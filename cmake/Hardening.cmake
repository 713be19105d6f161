# SPDX-License-Identifier: GPL-3.0-or-later
# What makes a fault that is left harder to use, in every file that is built here, the framework's modules too; at the cost
# of some checks outside of the inner loops. tests/hardening holds the built files to it.
#   _FORTIFY_SOURCE=3   copies of the C library look at the size of their target, also where only the running program knows it
#   stack protector     a return address that was overwritten ends the process; clash protection keeps stacks from meeting
#   full RELRO          the tables by which libraries call each other are resolved at loading and read-only from then on, so
#                       no block ever waits for a symbol, either
# Sanitizers see more, and do not go with the first.
if(NOT KESTRUM_SANITIZER)
    # Undefined first: a distribution's compiler may set a level of its own. It needs optimisation.
    add_compile_options("$<$<CONFIG:Release,RelWithDebInfo>:-U_FORTIFY_SOURCE;-D_FORTIFY_SOURCE=3>"
                        -fstack-protector-strong -fstack-clash-protection)
    add_link_options(LINKER:-z,relro,-z,now,-z,noexecstack)
endif()
include(CheckPIESupported)
check_pie_supported(LANGUAGES CXX)
