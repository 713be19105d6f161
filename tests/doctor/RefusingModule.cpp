// SPDX-License-Identifier: GPL-3.0-or-later
// A library that loads, but is no plug-in module.
extern "C" __attribute__((visibility("default"))) int someOtherLibrary() { return 1; }
