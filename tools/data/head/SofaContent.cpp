// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/head/SofaContent.h"

#include "data/DataError.h"
#include "headlink/ChildProcess.h"

#include <mysofa.h>

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string_view>
#include <type_traits>

namespace orvane::kestrum::tools {

namespace {

struct FreeHrtf {
    void operator()(MYSOFA_HRTF* hrtf) const { mysofa_free(hrtf); }
};

/// Put one after the other, each array behind its length. Both ends are one program; but the one that has met the file may
/// be out of order, so that the other believes no length.
class Packed {
public:
    explicit Packed(std::string text = {}) : bytes(std::move(text)) {}

    template <typename Array>
    void put(const Array& array) {
        static_assert(std::is_trivially_copyable_v<typename Array::value_type>);
        const std::uint64_t size = array.size() * sizeof(typename Array::value_type);
        bytes.append(reinterpret_cast<const char*>(&size), sizeof size);
        bytes.append(reinterpret_cast<const char*>(array.data()), size);
    }

    template <typename Array>
    void take(Array& array) {
        std::uint64_t size = 0;
        copyTo(&size, sizeof size);
        if (size > bytes.size() - position || size % sizeof(typename Array::value_type) != 0)
            throw std::runtime_error("an array is longer than all that came");
        array.resize(size / sizeof(typename Array::value_type));
        copyTo(array.data(), size);
    }

    std::string text() && { return std::move(bytes); }

private:
    void copyTo(void* target, std::uint64_t size) {
        if (size > bytes.size() - position)
            throw std::runtime_error("less came than was told");
        if (size > 0) // an empty array has no place to copy to
            std::memcpy(target, bytes.data() + position, size);
        position += size;
    }

    std::string bytes;
    std::size_t position = 0;
};

/// The same walk for both directions.
template <typename Visit, typename Content>
void forEachArray(Content& content, Visit visit) {
    visit(content.sampleRates);
    visit(content.sourcePositions);
    visit(content.responses);
    visit(content.delays);
    for (auto* const text : {&content.convention, &content.database, &content.listener, &content.licence,
                             &content.author, &content.organisation, &content.references})
        visit(*text);
}

std::string pack(const SofaContent& content) {
    Packed packed;
    packed.put(std::vector{content.measurementCount, content.receiverCount, content.tapCount});
    forEachArray(content, [&](const auto& array) { packed.put(array); });
    return std::move(packed).text();
}

SofaContent unpack(std::string text) {
    Packed packed(std::move(text));
    SofaContent content;
    std::vector<std::uint32_t> counts;
    packed.take(counts);
    if (counts.size() != 3)
        throw std::runtime_error("there are three counts");
    content.measurementCount = counts[0];
    content.receiverCount = counts[1];
    content.tapCount = counts[2];
    forEachArray(content, [&](auto& array) { packed.take(array); });
    return content;
}

std::vector<float> valuesOf(const MYSOFA_ARRAY& array) {
    return array.values != nullptr ? std::vector<float>(array.values, array.values + array.elements)
                                   : std::vector<float>();
}

std::string attribute(const MYSOFA_HRTF& hrtf, std::string name) {
    const char* const value = mysofa_getAttribute(hrtf.attributes, name.data());
    return value != nullptr ? value : "";
}

/// In the child.
std::string takenApart(const std::filesystem::path& file) {
    int error = MYSOFA_OK;
    const std::unique_ptr<MYSOFA_HRTF, FreeHrtf> hrtf(mysofa_load(file.c_str(), &error));
    if (!hrtf)
        throw DataError("(error " + std::to_string(error) + ")");
    // It walks as far as the other array says.
    if (hrtf->SourcePosition.values != nullptr && hrtf->SourcePosition.elements % 3 == 0)
        mysofa_tospherical(hrtf.get());
    return pack({hrtf->M, hrtf->R, hrtf->N, valuesOf(hrtf->DataSamplingRate), valuesOf(hrtf->SourcePosition),
                 valuesOf(hrtf->DataIR), valuesOf(hrtf->DataDelay), attribute(*hrtf, "SOFAConventions"),
                 attribute(*hrtf, "DatabaseName"), attribute(*hrtf, "ListenerShortName"),
                 attribute(*hrtf, "License"), attribute(*hrtf, "AuthorContact"),
                 attribute(*hrtf, "Organization"), attribute(*hrtf, "References")});
}

} // namespace

SofaContent readSofaContent(const std::filesystem::path& file, std::chrono::milliseconds limit) {
    using End = headlink::ChildResult::End;
    headlink::ChildResult result = headlink::inChildProcess([&] { return takenApart(file); }, limit);
    std::string how;
    switch (result.end) {
    case End::answered:
        try {
            return unpack(std::move(result.text));
        } catch (const std::exception&) {
            how = "(it is damaged)";
        }
        break;
    case End::refused:
        how = result.text;
        break;
    case End::crashed:
        how = "(it is damaged in a way that breaks its reader)";
        break;
    case End::tooLate:
        how = "(it is damaged in a way that keeps its reader busy for ever)";
        break;
    }
    throw DataError("\"" + file.string() + "\" cannot be read as a SOFA file " + how +
                    ": give an uncut file of the convention SimpleFreeFieldHRIR.");
}

} // namespace orvane::kestrum::tools
