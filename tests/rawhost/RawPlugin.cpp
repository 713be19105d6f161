// SPDX-License-Identifier: GPL-3.0-or-later
#include "RawPlugin.h"

#include "host/Module.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <stdexcept>

namespace rawhost {

namespace host = orvane::kestrum::host;
using host::makeHostObject;
using host::MemoryStream;
using host::query;
using Steinberg::int32;
using Steinberg::kResultOk;
using Steinberg::TUID;

namespace {

template <typename Function>
Function symbol(void* library, const char* name) {
    void* const address = dlsym(library, name);
    if (address == nullptr)
        throw std::runtime_error(std::string("the module has no entry point ") + name);
    return reinterpret_cast<Function>(address);
}

template <typename Interface>
ComPointer<Interface> create(Steinberg::IPluginFactory& factory, const TUID id) {
    void* object = nullptr;
    if (factory.createInstance(id, host::interfaceId<Interface>(), &object) != kResultOk)
        throw std::runtime_error("the factory made no object");
    return ComPointer<Interface>::adopt(static_cast<Interface*>(object));
}

/// The class of the first audio effect.
Steinberg::PClassInfo effectOf(Steinberg::IPluginFactory& factory) {
    for (int32 index = 0; index < factory.countClasses(); ++index) {
        Steinberg::PClassInfo info;
        if (factory.getClassInfo(index, &info) == kResultOk &&
            std::strcmp(info.category, kVstAudioEffectClass) == 0)
            return info;
    }
    throw std::runtime_error("the module offers no audio effect");
}

} // namespace

RawModule::RawModule(const std::filesystem::path& binary) {
    const auto file = std::filesystem::is_directory(binary) ? host::Module::binaryOf(binary) : binary;
    library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (library == nullptr)
        throw std::runtime_error(dlerror());
    const auto enter = symbol<bool (*)(void*)>(library, "ModuleEntry");
    exit = symbol<bool (*)()>(library, "ModuleExit");
    const auto getFactory = symbol<Steinberg::IPluginFactory* (*)()>(library, "GetPluginFactory");
    if (!enter(library))
        throw std::runtime_error("the module refused to start");
    pluginFactory = getFactory();
    application = makeHostObject<host::HostApplication>();
}

RawModule::~RawModule() {
    if (pluginFactory != nullptr)
        pluginFactory->release();
    application = {};
    exit();
    dlclose(library);
}

void BlockEdits::set(const std::vector<Edit>& edits) {
    if (edits.size() > capacity)
        throw std::length_error("more edits than a block holds");
    for (std::size_t index = 0; index < edits.size(); ++index)
        queues[index].edit = edits[index];
    count = static_cast<int32>(edits.size());
}

Vst::IParamValueQueue* BlockEdits::getParameterData(int32 index) {
    return index >= 0 && index < count ? &queues[static_cast<std::size_t>(index)] : nullptr;
}

Steinberg::tresult BlockEdits::Queue::getPoint(int32 index, int32& offset, Vst::ParamValue& value) {
    if (index != 0)
        return Steinberg::kResultFalse;
    offset = 0;
    value = edit.value;
    return kResultOk;
}

RawPlugin::RawPlugin(const RawModule& module) : handler(makeHostObject<host::ComponentHandler>()) {
    if (module.factory() == nullptr)
        throw std::runtime_error("the module gave no factory");
    Steinberg::IPluginFactory& factory = *module.factory();
    processing = create<Vst::IComponent>(factory, effectOf(factory).cid);
    if (processing->initialize(&module.hostContext()) != kResultOk)
        throw std::runtime_error("the processing half cannot be initialised");
    audio = query<Vst::IAudioProcessor>(processing.get());
    editing = query<Vst::IEditController>(processing.get());
    if (!editing) {
        editingIsApart = true;
        TUID id{};
        processing->getControllerClassId(id);
        editing = create<Vst::IEditController>(factory, id);
        if (editing->initialize(&module.hostContext()) != kResultOk)
            throw std::runtime_error("the editing half cannot be initialised");
        const auto one = query<Vst::IConnectionPoint>(processing.get());
        const auto other = query<Vst::IConnectionPoint>(editing.get());
        if (one && other) {
            one->connect(other.get());
            other->connect(one.get());
        }
    }
    editing->setComponentHandler(handler.get());
    processing->activateBus(Vst::kAudio, Vst::kInput, 0, true);
    processing->activateBus(Vst::kAudio, Vst::kOutput, 0, true);
}

RawPlugin::~RawPlugin() {
    if (editingIsApart) {
        const auto one = query<Vst::IConnectionPoint>(processing.get());
        const auto other = query<Vst::IConnectionPoint>(editing.get());
        if (one && other) {
            one->disconnect(other.get());
            other->disconnect(one.get());
        }
        editing->setComponentHandler(nullptr);
        editing->terminate();
    }
    editing = {};
    audio = {};
    processing->terminate();
}

bool RawPlugin::arrange(Vst::SpeakerArrangement input, Vst::SpeakerArrangement output) const {
    return audio->setBusArrangements(&input, 1, &output, 1) == kResultOk;
}

Vst::SpeakerArrangement RawPlugin::arrangement(Vst::BusDirection direction) const {
    Vst::SpeakerArrangement speakers = 0;
    audio->getBusArrangement(direction, 0, speakers);
    return speakers;
}

std::size_t RawPlugin::channelCount(Vst::BusDirection direction) const {
    Vst::BusInfo info{};
    processing->getBusInfo(Vst::kAudio, direction, 0, info);
    return static_cast<std::size_t>(info.channelCount);
}

bool RawPlugin::setUp(double sampleRate, int largestBlock) const {
    Vst::ProcessSetup setup{Vst::kRealtime, Vst::kSample32, largestBlock, sampleRate};
    return audio->setupProcessing(setup) == kResultOk;
}

bool RawPlugin::activate(bool active) const { return processing->setActive(active) == kResultOk; }

bool RawPlugin::prepare(double sampleRate, int largestBlock) const {
    return setUp(sampleRate, largestBlock) && activate(true) && audio->setProcessing(true) == kResultOk;
}

Steinberg::tresult RawPlugin::process(float** input, std::size_t inputs, float** output, std::size_t outputs,
                                      int frames, Vst::IParameterChanges* edits) const {
    Vst::AudioBusBuffers in;
    in.numChannels = static_cast<int32>(inputs);
    in.channelBuffers32 = input;
    Vst::AudioBusBuffers out;
    out.numChannels = static_cast<int32>(outputs);
    out.channelBuffers32 = output;
    Vst::ProcessData data;
    data.numSamples = frames;
    data.numInputs = input != nullptr ? 1 : 0;
    data.inputs = input != nullptr ? &in : nullptr;
    data.numOutputs = output != nullptr ? 1 : 0;
    data.outputs = output != nullptr ? &out : nullptr;
    data.inputParameterChanges = edits;
    return audio->process(data);
}

Vst::ParameterInfo RawPlugin::parameter(std::string_view title) const {
    for (int32 index = 0; index < editing->getParameterCount(); ++index) {
        Vst::ParameterInfo info{};
        if (editing->getParameterInfo(index, info) == kResultOk && host::toUtf8(info.title, 128) == title)
            return info;
    }
    throw std::runtime_error("there is no parameter " + std::string(title));
}

Vst::ParamID RawPlugin::parameterId(std::string_view title) const { return parameter(title).id; }

Edit RawPlugin::choice(std::string_view title, std::string_view text) const {
    const Vst::ParameterInfo info = parameter(title);
    for (int32 step = 0; step <= info.stepCount; ++step) {
        const double value = static_cast<double>(step) / std::max(info.stepCount, 1);
        Vst::String128 shown{};
        if (editing->getParamStringByValue(info.id, value, shown) == kResultOk &&
            host::toUtf8(shown, 128) == text)
            return {info.id, value};
    }
    throw std::runtime_error("no value of " + std::string(title) + " is shown as " + std::string(text));
}

void RawPlugin::flush(const std::vector<Edit>& edits) const {
    const auto changes = makeHostObject<BlockEdits>();
    changes->set(edits);
    process(nullptr, 0, nullptr, 0, 0, changes.get());
}

void RawPlugin::choose(std::string_view title, std::string_view text) const { flush({choice(title, text)}); }

std::vector<std::byte> RawPlugin::state() const {
    const auto stream = makeHostObject<MemoryStream>();
    if (processing->getState(stream.get()) != kResultOk)
        throw std::runtime_error("the plug-in gave no state");
    return stream->content();
}

void RawPlugin::setState(const std::vector<std::byte>& state) const {
    const auto stream = makeHostObject<MemoryStream>(state);
    processing->setState(stream.get());
}

} // namespace rawhost
