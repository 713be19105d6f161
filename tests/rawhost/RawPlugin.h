// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/HostObjects.h"
#include "host/Vst3.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

// A VST3 host on the bare interfaces that keeps no order of calls: what it is told is what the plug-in gets, however
// foolish. kestrum::vst3_host, which programs use, keeps the rules.

namespace rawhost {

using orvane::kestrum::host::ComPointer;
using orvane::kestrum::host::HostObject;
namespace Vst = Steinberg::Vst;

using Channels = std::vector<std::vector<float>>; ///< [channel][frame]

/// A loaded module: dlopen, its entry point and its factory; on destruction its exit point and dlclose.
///
/// Errors  std::runtime_error when it cannot be loaded or lacks an entry point.
class RawModule {
public:
    /// @param binary the shared object, or the bundle that holds it.
    explicit RawModule(const std::filesystem::path& binary);
    ~RawModule();
    RawModule(const RawModule&) = delete;
    RawModule& operator=(const RawModule&) = delete;

    /// Null when the module gave none.
    Steinberg::IPluginFactory* factory() const { return pluginFactory; }
    Steinberg::FUnknown& hostContext() const { return *application.get(); }

private:
    void* library = nullptr;
    bool (*exit)() = nullptr;
    Steinberg::IPluginFactory* pluginFactory = nullptr;
    ComPointer<orvane::kestrum::host::HostApplication> application;
};

/// One value for one parameter, told to the plug-in with a block.
struct Edit {
    Vst::ParamID id;
    Vst::ParamValue value; ///< 0 to 1, or anything else that a host may send.
};

/// The edits of a block in memory of their own: handing them over allocates nothing.
class BlockEdits final : public HostObject<Vst::IParameterChanges> {
public:
    static constexpr std::size_t capacity = 16;

    /// Errors  std::length_error beyond `capacity`.
    void set(const std::vector<Edit>& edits);

    Steinberg::int32 PLUGIN_API getParameterCount() override { return count; }
    Vst::IParamValueQueue* PLUGIN_API getParameterData(Steinberg::int32 index) override;
    /// A plug-in adds nothing to what it is told.
    Vst::IParamValueQueue* PLUGIN_API addParameterData(const Vst::ParamID&, Steinberg::int32&) override {
        return nullptr;
    }

private:
    class Queue final : public HostObject<Vst::IParamValueQueue> {
    public:
        Edit edit{};
        Vst::ParamID PLUGIN_API getParameterId() override { return edit.id; }
        Steinberg::int32 PLUGIN_API getPointCount() override { return 1; }
        Steinberg::tresult PLUGIN_API getPoint(Steinberg::int32 index, Steinberg::int32& offset,
                                               Vst::ParamValue& value) override;
        Steinberg::tresult PLUGIN_API addPoint(Steinberg::int32, Vst::ParamValue,
                                               Steinberg::int32&) override {
            return Steinberg::kResultFalse;
        }
    };
    std::array<Queue, capacity> queues;
    Steinberg::int32 count = 0;
};

/// The module's effect, both halves made, initialised and connected; nothing set up yet.
///
/// Thread  none is kept: each call goes straight to the plug-in.
/// Errors  std::runtime_error from the constructor, choose() and parameterId().
class RawPlugin {
public:
    explicit RawPlugin(const RawModule& module);
    ~RawPlugin();
    RawPlugin(const RawPlugin&) = delete;
    RawPlugin& operator=(const RawPlugin&) = delete;

    Vst::IComponent& component() const { return *processing.get(); }
    Vst::IAudioProcessor& processor() const { return *audio.get(); }
    Vst::IEditController& controller() const { return *editing.get(); }

    /// @return whether the plug-in agreed.
    bool arrange(Vst::SpeakerArrangement input, Vst::SpeakerArrangement output) const;
    Vst::SpeakerArrangement arrangement(Vst::BusDirection direction) const;
    std::size_t channelCount(Vst::BusDirection direction) const;

    bool setUp(double sampleRate, int largestBlock) const;
    bool activate(bool active) const;
    /// The three calls with which a session starts to play: set up, activate, process.
    bool prepare(double sampleRate, int largestBlock) const;

    /// One call of process(). Null pointers and 0 channels are handed over as such.
    Steinberg::tresult process(float** input, std::size_t inputs, float** output, std::size_t outputs,
                               int frames, Vst::IParameterChanges* edits = nullptr) const;

    /// The number by which the interface knows a parameter of this title.
    Vst::ParamID parameterId(std::string_view title) const;
    /// The value of a parameter at which the plug-in shows this text, such as "7.1.4".
    Edit choice(std::string_view title, std::string_view text) const;
    /// Hands edits over by a call without audio.
    void flush(const std::vector<Edit>& edits) const;
    /// flush(choice(...)).
    void choose(std::string_view title, std::string_view text) const;

    std::vector<std::byte> state() const;
    void setState(const std::vector<std::byte>& state) const;

private:
    Vst::ParameterInfo parameter(std::string_view title) const;

    ComPointer<orvane::kestrum::host::ComponentHandler> handler;
    ComPointer<Vst::IComponent> processing;
    ComPointer<Vst::IAudioProcessor> audio;
    ComPointer<Vst::IEditController> editing;
    bool editingIsApart = false; ///< The editing half is an object of its own.
};

} // namespace rawhost
