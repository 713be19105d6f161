// SPDX-License-Identifier: GPL-3.0-or-later
#include "ElfFacts.h"

#include "support/CommandOutput.h"

#include <regex>

namespace test {

namespace {

bool has(const std::string& listing, const char* pattern) {
    return std::regex_search(listing, std::regex(pattern));
}

} // namespace

std::vector<std::string> weaknessesOf(const std::filesystem::path& file) {
    const std::string quoted = "'" + file.string() + "'";
    const std::string header = outputOf("readelf --wide --file-header --program-headers " + quoted);
    const std::string dynamic = outputOf("readelf --wide --dynamic " + quoted);
    const std::string imported = outputOf("nm --dynamic --undefined-only " + quoted);
    std::vector<std::string> weaknesses;
    const auto expect = [&](bool holds, const char* otherwise) {
        if (!holds)
            weaknesses.emplace_back(otherwise);
    };
    expect(has(header, "Type: +DYN"), "its addresses are fixed");
    expect(has(header, "GNU_RELRO"), "its tables stay writable");
    expect(has(dynamic, R"(BIND_NOW|FLAGS_1.*NOW)"), "its symbols are resolved while it runs");
    expect(has(header, R"(GNU_STACK +(0x\w+ +){5}RW )"), "its stack may be executed");
    expect(!has(header, R"(LOAD +(0x\w+ +){5}RWE)"), "it has memory that is both written and executed");
    expect(!has(dynamic, "TEXTREL"), "its code is changed at loading");
    expect(!has(dynamic, "RPATH|RUNPATH"), "it looks for libraries in a folder of its own");
    expect(has(imported, "__stack_chk_fail"), "its stack is not protected");
    expect(has(imported, R"(__\w+_chk\b)"), "its copies are not checked");
    return weaknesses;
}

} // namespace test
