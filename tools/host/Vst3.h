// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The interfaces' headers and the little reference counting that a host needs. For this folder's .cpp files
// only: users of the host see none of it.
//
// Interface ids are the `..._iid` byte arrays of the headers, so no source of the interfaces' kit is compiled
// in.

#include <pluginterfaces/base/ibstream.h>
#include <pluginterfaces/base/ipluginbase.h>
#include <pluginterfaces/gui/iplugview.h>
#include <pluginterfaces/gui/iplugviewcontentscalesupport.h>
#include <pluginterfaces/vst/ivstattributes.h>
#include <pluginterfaces/vst/ivstaudioprocessor.h>
#include <pluginterfaces/vst/ivstcomponent.h>
#include <pluginterfaces/vst/ivsteditcontroller.h>
#include <pluginterfaces/vst/ivsthostapplication.h>
#include <pluginterfaces/vst/ivstmessage.h>
#include <pluginterfaces/vst/ivstparameterchanges.h>
#include <pluginterfaces/vst/ivstprocesscontext.h>

#include <atomic>
#include <cstring>
#include <string>
#include <string_view>
#include <utility>

namespace orvane::kestrum::host {

namespace Vst = Steinberg::Vst;
using Steinberg::FUnknown;
using Steinberg::TUID;

/// The 16 bytes by which an interface is asked for.
template <typename Interface>
const char* interfaceId();
template <>
inline const char* interfaceId<FUnknown>() {
    return Steinberg::FUnknown_iid;
}
template <>
inline const char* interfaceId<Steinberg::IPluginFactory2>() {
    return Steinberg::IPluginFactory2_iid;
}
template <>
inline const char* interfaceId<Steinberg::IPluginFactory3>() {
    return Steinberg::IPluginFactory3_iid;
}
template <>
inline const char* interfaceId<Steinberg::IBStream>() {
    return Steinberg::IBStream_iid;
}
template <>
inline const char* interfaceId<Vst::IComponent>() {
    return Vst::IComponent_iid;
}
template <>
inline const char* interfaceId<Vst::IAudioProcessor>() {
    return Vst::IAudioProcessor_iid;
}
template <>
inline const char* interfaceId<Vst::IEditController>() {
    return Vst::IEditController_iid;
}
template <>
inline const char* interfaceId<Vst::IConnectionPoint>() {
    return Vst::IConnectionPoint_iid;
}
template <>
inline const char* interfaceId<Vst::IHostApplication>() {
    return Vst::IHostApplication_iid;
}
template <>
inline const char* interfaceId<Vst::IComponentHandler>() {
    return Vst::IComponentHandler_iid;
}
template <>
inline const char* interfaceId<Vst::IMessage>() {
    return Vst::IMessage_iid;
}
template <>
inline const char* interfaceId<Vst::IAttributeList>() {
    return Vst::IAttributeList_iid;
}
template <>
inline const char* interfaceId<Vst::IParamValueQueue>() {
    return Vst::IParamValueQueue_iid;
}
template <>
inline const char* interfaceId<Vst::IParameterChanges>() {
    return Vst::IParameterChanges_iid;
}
template <>
inline const char* interfaceId<Steinberg::IPlugFrame>() {
    return Steinberg::IPlugFrame_iid;
}
template <>
inline const char* interfaceId<Steinberg::Linux::IRunLoop>() {
    return Steinberg::Linux::IRunLoop_iid;
}
template <>
inline const char* interfaceId<Steinberg::IPlugViewContentScaleSupport>() {
    return Steinberg::IPlugViewContentScaleSupport_iid;
}

/// Shared owner of an object that counts its own references.
template <typename Interface>
class ComPointer {
public:
    ComPointer() = default;
    ComPointer(const ComPointer& other) : object(other.object) {
        if (object != nullptr)
            object->addRef();
    }
    ComPointer(ComPointer&& other) noexcept : object(std::exchange(other.object, nullptr)) {}
    ComPointer& operator=(ComPointer other) noexcept {
        std::swap(object, other.object);
        return *this;
    }
    ~ComPointer() {
        if (object != nullptr)
            object->release();
    }

    /// Takes over a reference that was already counted for the caller.
    static ComPointer adopt(Interface* counted) {
        ComPointer pointer;
        pointer.object = counted;
        return pointer;
    }

    Interface* get() const { return object; }
    Interface* operator->() const { return object; }
    explicit operator bool() const { return object != nullptr; }

private:
    Interface* object = nullptr;
};

/// Asks an object for another of its interfaces. @return empty when it has none.
template <typename Interface>
ComPointer<Interface> query(FUnknown* object) {
    void* found = nullptr;
    if (object == nullptr || object->queryInterface(interfaceId<Interface>(), &found) != Steinberg::kResultOk)
        return {};
    return ComPointer<Interface>::adopt(static_cast<Interface*>(found));
}

/// Base of the objects that the host lends to a plug-in: counts references and answers for its interfaces.
/// Starts with one reference, for makeHostObject().
template <typename... Interfaces>
class HostObject : public Interfaces... {
public:
    HostObject() = default;
    HostObject(const HostObject&) = delete;
    HostObject& operator=(const HostObject&) = delete;
    virtual ~HostObject() = default;

    Steinberg::tresult PLUGIN_API queryInterface(const TUID id, void** object) override {
        *object = nullptr;
        offer(id, interfaceId<FUnknown>(), firstOf<Interfaces...>(*this), object);
        (offer(id, interfaceId<Interfaces>(), static_cast<Interfaces*>(this), object), ...);
        if (*object == nullptr)
            return Steinberg::kNoInterface;
        addRef();
        return Steinberg::kResultOk;
    }
    Steinberg::uint32 PLUGIN_API addRef() override { return ++references; }
    Steinberg::uint32 PLUGIN_API release() override {
        const auto left = --references;
        if (left == 0)
            delete this;
        return left;
    }

private:
    template <typename First, typename...>
    static First* firstOf(HostObject& object) {
        return static_cast<First*>(&object);
    }
    static void offer(const char* wanted, const char* offered, void* face, void** object) {
        if (*object == nullptr && std::memcmp(wanted, offered, sizeof(TUID)) == 0)
            *object = face;
    }

    std::atomic<Steinberg::uint32> references{1};
};

template <typename Object, typename... Arguments>
ComPointer<Object> makeHostObject(Arguments&&... arguments) {
    return ComPointer<Object>::adopt(new Object(std::forward<Arguments>(arguments)...));
}

/// UTF-8 of a string as the interfaces keep it: UTF-16 up to a zero or to `capacity` units.
std::string toUtf8(const Vst::TChar* text, std::size_t capacity);
/// Fills a 128-unit string from ASCII, cut at 127 units.
void copyAscii(std::string_view text, Vst::String128 destination);
/// 32 upper-case hexadecimal digits, the form that preset files and module descriptions carry.
std::string toHexadecimal(const TUID id);

} // namespace orvane::kestrum::host
