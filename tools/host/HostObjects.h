// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/Vst3.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <map>
#include <mutex>
#include <span>
#include <string>
#include <variant>
#include <vector>

// The objects that a VST3 host has to offer to a plug-in. For this folder's .cpp files only.

namespace orvane::kestrum::host {

/// Values by key, sent along with messages.
class AttributeList final : public HostObject<Vst::IAttributeList> {
public:
    Steinberg::tresult PLUGIN_API setInt(AttrID key, Steinberg::int64 value) override;
    Steinberg::tresult PLUGIN_API getInt(AttrID key, Steinberg::int64& value) override;
    Steinberg::tresult PLUGIN_API setFloat(AttrID key, double value) override;
    Steinberg::tresult PLUGIN_API getFloat(AttrID key, double& value) override;
    Steinberg::tresult PLUGIN_API setString(AttrID key, const Vst::TChar* text) override;
    Steinberg::tresult PLUGIN_API getString(AttrID key, Vst::TChar* text,
                                            Steinberg::uint32 byteCount) override;
    Steinberg::tresult PLUGIN_API setBinary(AttrID key, const void* data,
                                            Steinberg::uint32 byteCount) override;
    Steinberg::tresult PLUGIN_API getBinary(AttrID key, const void*& data,
                                            Steinberg::uint32& byteCount) override;

private:
    using Value = std::variant<Steinberg::int64, double, std::u16string, std::vector<std::byte>>;
    std::map<std::string, Value, std::less<>> values;
};

/// What the two halves of a plug-in send each other.
class Message final : public HostObject<Vst::IMessage> {
public:
    Steinberg::FIDString PLUGIN_API getMessageID() override { return name.c_str(); }
    void PLUGIN_API setMessageID(Steinberg::FIDString id) override { name = id != nullptr ? id : ""; }
    Vst::IAttributeList* PLUGIN_API getAttributes() override { return attributes.get(); }

private:
    std::string name;
    ComPointer<AttributeList> attributes = makeHostObject<AttributeList>();
};

/// The host as a plug-in sees it: a name and a maker of messages.
class HostApplication final : public HostObject<Vst::IHostApplication> {
public:
    Steinberg::tresult PLUGIN_API getName(Vst::String128 name) override;
    Steinberg::tresult PLUGIN_API createInstance(TUID classId, TUID interface, void** object) override;
};

/// One value that a parameter has taken.
struct ParameterEdit {
    Vst::ParamID id;
    Vst::ParamValue value;
};

/// Takes what the plug-in tells its host. Plug-ins call it from threads of their own, hence atomics and mutex.
class ComponentHandler final : public HostObject<Vst::IComponentHandler> {
public:
    Steinberg::tresult PLUGIN_API beginEdit(Vst::ParamID id) override;
    Steinberg::tresult PLUGIN_API performEdit(Vst::ParamID id, Vst::ParamValue value) override;
    Steinberg::tresult PLUGIN_API endEdit(Vst::ParamID id) override;
    Steinberg::tresult PLUGIN_API restartComponent(Steinberg::int32 flags) override;

    /// Adds a value to those that the processing half is still to learn.
    void queue(ParameterEdit edit);
    /// @return the waiting values, oldest first; none are left.
    std::vector<ParameterEdit> takeWaiting();

    std::atomic<std::uint32_t> gestureCount{0}; ///< beginEdit and endEdit calls so far.
    std::atomic<std::uint32_t> editCount{0};    ///< performEdit calls so far.

private:
    std::mutex mutex;
    std::vector<ParameterEdit> waiting;
};

/// The values of one parameter within a block.
class ParameterQueue final : public HostObject<Vst::IParamValueQueue> {
public:
    explicit ParameterQueue(Vst::ParamID id) : id(id) {}
    Vst::ParamID PLUGIN_API getParameterId() override { return id; }
    Steinberg::int32 PLUGIN_API getPointCount() override {
        return static_cast<Steinberg::int32>(points.size());
    }
    Steinberg::tresult PLUGIN_API getPoint(Steinberg::int32 index, Steinberg::int32& offset,
                                           Vst::ParamValue& value) override;
    Steinberg::tresult PLUGIN_API addPoint(Steinberg::int32 offset, Vst::ParamValue value,
                                           Steinberg::int32& index) override;

private:
    struct Point {
        Steinberg::int32 offset;
        Vst::ParamValue value;
    };
    Vst::ParamID id;
    std::vector<Point> points;
};

/// The parameter changes of one block, either way.
class ParameterChanges final : public HostObject<Vst::IParameterChanges> {
public:
    Steinberg::int32 PLUGIN_API getParameterCount() override {
        return static_cast<Steinberg::int32>(queues.size());
    }
    Vst::IParamValueQueue* PLUGIN_API getParameterData(Steinberg::int32 index) override;
    Vst::IParamValueQueue* PLUGIN_API addParameterData(const Vst::ParamID& id,
                                                       Steinberg::int32& index) override;

    void clear() { queues.clear(); }

private:
    std::vector<ComPointer<ParameterQueue>> queues;
};

/// Bytes in memory that a plug-in writes its state to or reads it from.
class MemoryStream final : public HostObject<Steinberg::IBStream> {
public:
    MemoryStream() = default;
    explicit MemoryStream(std::span<const std::byte> content) : bytes(content.begin(), content.end()) {}

    Steinberg::tresult PLUGIN_API read(void* buffer, Steinberg::int32 count, Steinberg::int32* done) override;
    Steinberg::tresult PLUGIN_API write(void* buffer, Steinberg::int32 count,
                                        Steinberg::int32* done) override;
    Steinberg::tresult PLUGIN_API seek(Steinberg::int64 offset, Steinberg::int32 mode,
                                       Steinberg::int64* result) override;
    Steinberg::tresult PLUGIN_API tell(Steinberg::int64* result) override;

    const std::vector<std::byte>& content() const { return bytes; }

private:
    std::vector<std::byte> bytes;
    std::size_t position = 0; ///< May lie behind the end; a write then fills the gap with zeros.
};

} // namespace orvane::kestrum::host
