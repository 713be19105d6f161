// SPDX-License-Identifier: GPL-3.0-or-later
// tests/state/ keeps chunks as older builds wrote them, NAME.chunk, beside the texts of the six host
// parameters that they load to, NAME.values, one per line. Files are only ever added: a session once stored
// has to load for ever.
#include "TestProcessor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

namespace {

std::vector<std::filesystem::path> storedChunks() {
    std::vector<std::filesystem::path> chunks;
    for (const auto& entry : std::filesystem::directory_iterator(KESTRUM_STORED_STATES))
        if (entry.path().extension() == ".chunk")
            chunks.push_back(entry.path());
    std::ranges::sort(chunks);
    return chunks;
}

std::string contents(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), {}};
}

class StoredState : public ::testing::TestWithParam<std::filesystem::path> {};

TEST_P(StoredState, LoadsToTheValuesThatItHadWhenItWasWritten) {
    const auto processor = test::makeProcessor([] { return std::string("/nonexistent"); });
    const std::string chunk = contents(GetParam());
    processor->setStateInformation(chunk.data(), static_cast<int>(chunk.size()));
    std::string values;
    for (auto* const parameter : processor->getParameters())
        values += (parameter->getName(100) + ": " + parameter->getCurrentValueAsText()).toStdString() + "\n";
    EXPECT_EQ(values, contents(std::filesystem::path(GetParam()).replace_extension(".values")));
}
INSTANTIATE_TEST_SUITE_P(
    OfOlderBuilds, StoredState, ::testing::ValuesIn(storedChunks()), [](const auto& test) {
        std::string name = test.param.stem().string();
        std::ranges::replace_if(
            name, [](char character) { return !std::isalnum(static_cast<unsigned char>(character)); }, '_');
        return name;
    });

} // namespace
