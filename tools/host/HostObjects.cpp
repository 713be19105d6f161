// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/HostObjects.h"

#include <algorithm>
#include <limits>

namespace orvane::kestrum::host {

using Steinberg::int32;
using Steinberg::int64;
using Steinberg::kInvalidArgument;
using Steinberg::kResultFalse;
using Steinberg::kResultOk;
using Steinberg::tresult;
using Steinberg::uint32;

tresult AttributeList::setInt(AttrID key, int64 value) {
    values[key] = value;
    return kResultOk;
}

tresult AttributeList::getInt(AttrID key, int64& value) {
    const auto found = values.find(key);
    const auto* const held = found != values.end() ? std::get_if<int64>(&found->second) : nullptr;
    if (held == nullptr)
        return kResultFalse;
    value = *held;
    return kResultOk;
}

tresult AttributeList::setFloat(AttrID key, double value) {
    values[key] = value;
    return kResultOk;
}

tresult AttributeList::getFloat(AttrID key, double& value) {
    const auto found = values.find(key);
    const auto* const held = found != values.end() ? std::get_if<double>(&found->second) : nullptr;
    if (held == nullptr)
        return kResultFalse;
    value = *held;
    return kResultOk;
}

tresult AttributeList::setString(AttrID key, const Vst::TChar* text) {
    values[key] = std::u16string(text);
    return kResultOk;
}

tresult AttributeList::getString(AttrID key, Vst::TChar* text, uint32 byteCount) {
    const auto found = values.find(key);
    const auto* const held = found != values.end() ? std::get_if<std::u16string>(&found->second) : nullptr;
    const std::size_t capacity = byteCount / sizeof(Vst::TChar);
    if (held == nullptr || capacity == 0)
        return kResultFalse;
    const std::size_t length = std::min(held->size(), capacity - 1);
    std::copy_n(held->begin(), length, text);
    text[length] = 0;
    return kResultOk;
}

tresult AttributeList::setBinary(AttrID key, const void* data, uint32 byteCount) {
    const auto* const first = static_cast<const std::byte*>(data);
    values[key] = std::vector<std::byte>(first, first + byteCount);
    return kResultOk;
}

tresult AttributeList::getBinary(AttrID key, const void*& data, uint32& byteCount) {
    const auto found = values.find(key);
    const auto* const held =
        found != values.end() ? std::get_if<std::vector<std::byte>>(&found->second) : nullptr;
    if (held == nullptr)
        return kResultFalse;
    data = held->data();
    byteCount = static_cast<uint32>(held->size());
    return kResultOk;
}

tresult HostApplication::getName(Vst::String128 name) {
    copyAscii("kestrum", name);
    return kResultOk;
}

tresult HostApplication::createInstance(TUID classId, TUID interface, void** object) {
    *object = nullptr;
    const auto isId = [&](const char* id) { return std::memcmp(classId, id, sizeof(TUID)) == 0; };
    if (isId(interfaceId<Vst::IMessage>()))
        return makeHostObject<Message>()->queryInterface(interface, object);
    if (isId(interfaceId<Vst::IAttributeList>()))
        return makeHostObject<AttributeList>()->queryInterface(interface, object);
    return kResultFalse;
}

tresult ComponentHandler::beginEdit(Vst::ParamID) {
    ++gestureCount;
    return kResultOk;
}

tresult ComponentHandler::performEdit(Vst::ParamID id, Vst::ParamValue value) {
    ++editCount;
    queue({id, value});
    return kResultOk;
}

tresult ComponentHandler::endEdit(Vst::ParamID) {
    ++gestureCount;
    return kResultOk;
}

tresult ComponentHandler::restartComponent(int32) { return kResultOk; }

void ComponentHandler::queue(ParameterEdit edit) {
    const std::lock_guard lock(mutex);
    waiting.push_back(edit);
}

std::vector<ParameterEdit> ComponentHandler::takeWaiting() {
    const std::lock_guard lock(mutex);
    return std::exchange(waiting, {});
}

tresult ParameterQueue::getPoint(int32 index, int32& offset, Vst::ParamValue& value) {
    if (index < 0 || index >= getPointCount())
        return kInvalidArgument;
    offset = points[static_cast<std::size_t>(index)].offset;
    value = points[static_cast<std::size_t>(index)].value;
    return kResultOk;
}

tresult ParameterQueue::addPoint(int32 offset, Vst::ParamValue value, int32& index) {
    index = getPointCount();
    points.push_back({offset, value});
    return kResultOk;
}

Vst::IParamValueQueue* ParameterChanges::getParameterData(int32 index) {
    if (index < 0 || index >= getParameterCount())
        return nullptr;
    return queues[static_cast<std::size_t>(index)].get();
}

Vst::IParamValueQueue* ParameterChanges::addParameterData(const Vst::ParamID& id, int32& index) {
    const auto known =
        std::ranges::find_if(queues, [id](const auto& queue) { return queue->getParameterId() == id; });
    index = static_cast<int32>(known - queues.begin());
    if (known != queues.end())
        return known->get();
    queues.push_back(makeHostObject<ParameterQueue>(id));
    return queues.back().get();
}

tresult MemoryStream::read(void* buffer, int32 count, int32* done) {
    if (buffer == nullptr || count < 0)
        return kInvalidArgument;
    const std::size_t available = bytes.size() - std::min(position, bytes.size());
    const std::size_t length = std::min(static_cast<std::size_t>(count), available);
    if (length > 0)
        std::memcpy(buffer, bytes.data() + position, length);
    position += length;
    if (done != nullptr)
        *done = static_cast<int32>(length);
    return kResultOk;
}

tresult MemoryStream::write(void* buffer, int32 count, int32* done) {
    if (buffer == nullptr || count < 0)
        return kInvalidArgument;
    const auto length = static_cast<std::size_t>(count);
    if (position + length > bytes.size())
        bytes.resize(position + length);
    if (length > 0)
        std::memcpy(bytes.data() + position, buffer, length);
    position += length;
    if (done != nullptr)
        *done = count;
    return kResultOk;
}

tresult MemoryStream::seek(int64 offset, int32 mode, int64* result) {
    int64 from = 0;
    if (mode == kIBSeekCur)
        from = static_cast<int64>(position);
    else if (mode == kIBSeekEnd)
        from = static_cast<int64>(bytes.size());
    else if (mode != kIBSeekSet)
        return kInvalidArgument;
    // A state is small; the limit keeps a wild offset from asking for all memory at the next write.
    if (offset < -from || offset > std::numeric_limits<int32>::max() - from)
        return kInvalidArgument;
    position = static_cast<std::size_t>(from + offset);
    if (result != nullptr)
        *result = from + offset;
    return kResultOk;
}

tresult MemoryStream::tell(int64* result) {
    if (result == nullptr)
        return kInvalidArgument;
    *result = static_cast<int64>(position);
    return kResultOk;
}

} // namespace orvane::kestrum::host
