// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/IPlugin.h"
#include "host/Module.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

namespace Steinberg::Vst {
// NOLINTNEXTLINE(cppcoreguidelines-virtual-class-destructor): ends by its release()
class IEditController;
} // namespace Steinberg::Vst

namespace orvane::kestrum::host {

/// One effect of a module, made and handled as an audio workstation does it: both halves created, initialised
/// and connected; parameters told to the editing half at once and to the processing half with the next block.
///
/// Thread  one thread, which is the window's too; the plug-in may run threads of its own. automate(), process()
///         and flushParameters() may instead all be called from one other thread, as an audio driver does it.
/// Errors  HostError; see the constructor and the operations.
class PluginInstance final : public IPlugin {
public:
    /// Makes the module's first audio effect.
    /// @throws HostError when it offers none, or when one of its halves cannot be made.
    explicit PluginInstance(std::shared_ptr<Module> module);
    PluginInstance(const PluginInstance&) = delete;
    PluginInstance& operator=(const PluginInstance&) = delete;
    ~PluginInstance() override;

    /// 32 hexadecimal digits of the effect's class, as preset files carry it.
    const std::string& classId() const;
    const std::string& name() const;
    const std::string& version() const;

    bool setChannelCounts(unsigned inputs, unsigned outputs) override;
    /// The same with any sets of speakers, one bit each. @return false when the plug-in refuses.
    bool setArrangements(std::uint64_t inputs, std::uint64_t outputs);
    std::uint64_t inputArrangement() const;
    std::uint64_t outputArrangement() const;
    unsigned inputChannelCount() const override;
    unsigned outputChannelCount() const override;

    const std::vector<ParameterInfo>& parameters() const override;
    double normalizedValue(std::uint32_t id) const override;
    std::string textOf(std::uint32_t id, double normalized) const override;
    void setParameter(std::uint32_t id, double normalized) override;
    /// The same as a session's automation does it: only the processing half learns it, with the next block or
    /// flush.
    void automate(std::uint32_t id, double normalized);
    void flushParameters() override;

    /// @throws HostError when the plug-in refuses the setup.
    void prepare(double sampleRate, std::uint32_t largestBlock, ProcessMode mode) override;
    void release() override;
    std::uint32_t latency() const override;
    std::uint32_t tailLength() const; ///< Samples; what the plug-in reports.

    /// @throws HostError when a channel count is not the bus's, or when the block is larger than announced: a
    /// plug-in's wrapper may write beyond its memory then.
    void process(std::span<const float* const> inputs, std::span<float* const> outputs,
                 std::uint32_t frames) override;

    /// @throws HostError when the plug-in gives or takes no state.
    PluginState state() const override;
    void setState(const PluginState& state) override;

    /// How often the plug-in has begun or ended a gesture on a parameter.
    std::uint32_t gestureCount() const;
    /// How many parameter values the plug-in's own window has sent.
    std::uint32_t editCount() const;

private:
    friend class EditorWindow;
    Steinberg::Vst::IEditController& controller() const;

    struct Parts;
    std::unique_ptr<Parts> parts;
};

} // namespace orvane::kestrum::host
