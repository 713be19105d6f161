// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace orvane::kestrum::host {

/// One parameter as the plug-in describes it to its host.
struct ParameterInfo {
    std::uint32_t id = 0;       ///< The plug-in's own number, not an index.
    std::string name;           ///< UTF-8.
    std::int32_t stepCount = 0; ///< 0: continuous; n: n + 1 discrete values at k / n.
    double defaultNormalized = 0;
    bool automatable = false;
    bool readOnly = false;
    bool bypass = false;
};

enum class ProcessMode { realtime, offline };

/// What a plug-in stores with a session: the chunk of its processing half, and that of its editing half,
/// which is empty when the plug-in keeps none.
struct PluginState {
    std::vector<std::byte> component;
    std::vector<std::byte> controller;
};

/// An effect with one main input bus and one main output bus, as a host handles it.
///
/// Order   setChannelCounts and state while not prepared; process while prepared (a plug-in has to bear a
/// process
///         call at any time, and tests make use of that).
/// Thread  every operation from one thread.
/// Errors  HostError.
class IPlugin {
public:
    virtual ~IPlugin() = default;

    /// Asks for buses of so many channels, each with the lowest speaker bits set.
    /// @return false when the plug-in refuses; its buses may then have changed to something else.
    virtual bool setChannelCounts(unsigned inputs, unsigned outputs) = 0;
    virtual unsigned inputChannelCount() const = 0;
    virtual unsigned outputChannelCount() const = 0;

    virtual const std::vector<ParameterInfo>& parameters() const = 0;
    virtual double normalizedValue(std::uint32_t id) const = 0;
    /// The plug-in's own words for a value, UTF-8.
    virtual std::string textOf(std::uint32_t id, double normalized) const = 0;
    /// Changes a parameter as a user's hand would: the editing half learns it now, the processing half with
    /// the next block or flush.
    virtual void setParameter(std::uint32_t id, double normalized) = 0;
    /// Hands waiting parameter changes over by a call without audio.
    virtual void flushParameters() = 0;

    /// Fixes rate and largest block and starts processing. A repeated call without release() is allowed.
    virtual void prepare(double sampleRate, std::uint32_t largestBlock, ProcessMode mode) = 0;
    virtual void release() = 0;
    /// What the plug-in reports, in samples.
    virtual std::uint32_t latency() const = 0;

    /// Shape   inputs [inputChannelCount()][frames], outputs [outputChannelCount()][frames]; frames at most
    /// the
    ///         prepared block.
    virtual void process(std::span<const float* const> inputs, std::span<float* const> outputs,
                         std::uint32_t frames) = 0;

    virtual PluginState state() const = 0;
    virtual void setState(const PluginState& state) = 0;
};

/// @return the parameter of that name, or null.
const ParameterInfo* findParameter(const IPlugin& plugin, std::string_view name);

} // namespace orvane::kestrum::host
