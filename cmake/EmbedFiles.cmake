# SPDX-License-Identifier: GPL-3.0-or-later
# Files compiled into a program. Run as a script by the build:
#   cmake -D OUTPUT=... -D HEADER=... -D NAMESPACE=... -D FUNCTION=... -D "FILES=a;b" -P EmbedFiles.cmake
# writes a source that defines  std::string_view FUNCTION(std::string_view name),  the bytes of the file of that name, or
# nothing for an unknown name. HEADER, which declares it, is written by hand.
set(text "// Made by cmake/EmbedFiles.cmake, do not edit.\n#include \"${HEADER}\"\n\nnamespace ${NAMESPACE} {\n\nnamespace {\n\n")
set(rows "")
set(number 0)
foreach(path IN LISTS FILES)
    file(READ "${path}" bytes HEX)
    string(REGEX REPLACE "([0-9a-f][0-9a-f])" "0x\\1," bytes "${bytes}")
    get_filename_component(name "${path}" NAME)
    string(APPEND text "constexpr unsigned char file${number}[]{${bytes}};\n")
    string(APPEND rows "    if (name == \"${name}\")\n        return {reinterpret_cast<const char*>(file${number}), sizeof file${number}};\n")
    math(EXPR number "${number} + 1")
endforeach()
string(APPEND text "\n} // namespace\n\nstd::string_view ${FUNCTION}(std::string_view name) {\n${rows}    return {};\n}\n\n} // namespace ${NAMESPACE}\n")
file(WRITE "${OUTPUT}" "${text}")
