// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "filters/IChannelProcessor.h"
#include "filters/IGenericBiquadFilter.h"

#include <functional>
#include <memory>
#include <utility>
#include <vector>

namespace orvane {

/// A chain of filters, each with a function that pushes present parameter values into it before every block.
///
/// Thread  add() on a building thread, process() on the audio thread.
template <typename Processor>
class ChannelProcessorManager final : public IChannelProcessor {
public:
    using Update = std::function<void(Processor&)>;

    /// Appends a filter.
    void add(std::unique_ptr<Processor> processor, Update update) {
        entries.push_back({std::move(processor), std::move(update)});
    }

    /// Errors  std::bad_function_call for an entry without an update function.
    void process(SampleSpan buffer) ORVANE_REALTIME override {
        for (Entry& entry : entries) {
            entry.update(*entry.processor);
            entry.processor->process(buffer);
        }
    }

private:
    struct Entry {
        std::unique_ptr<Processor> processor;
        Update update;
    };
    std::vector<Entry> entries;
};

} // namespace orvane
