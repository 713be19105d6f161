// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/PluginInstance.h"

#include "host/HostError.h"
#include "host/HostObjects.h"
#include "host/ModuleLoaded.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace orvane::kestrum::host {

using Steinberg::int32;
using Steinberg::kResultOk;

namespace {

// What a plug-in is told until a preparation says otherwise, so that a block sent before it finds memory for
// every channel of the buses.
constexpr std::uint32_t firstBlock = 1024;
constexpr double firstSampleRate = 44100;

std::uint64_t lowestSpeakers(unsigned count) {
    return count >= 64 ? ~std::uint64_t{0} : (std::uint64_t{1} << count) - 1;
}

unsigned channelCountOf(Vst::IComponent& component, Vst::BusDirection direction) {
    Vst::BusInfo info{};
    if (component.getBusInfo(Vst::kAudio, direction, 0, info) != kResultOk)
        return 0;
    return static_cast<unsigned>(std::max(info.channelCount, 0));
}

} // namespace

/// Released from bottom to top after the destructor has taken both halves apart.
struct PluginInstance::Parts {
    std::shared_ptr<Module> module;
    std::string classId;
    std::string name;
    std::string version;
    ComPointer<ComponentHandler> handler = makeHostObject<ComponentHandler>();
    ComPointer<Vst::IComponent> component;
    ComPointer<Vst::IAudioProcessor> processor;
    ComPointer<Vst::IEditController> controller;
    bool ownController = false; ///< The editing half is an object of its own.
    std::vector<ParameterInfo> parameters;

    ComPointer<ParameterChanges> incoming = makeHostObject<ParameterChanges>();
    ComPointer<ParameterChanges> outgoing = makeHostObject<ParameterChanges>();
    Vst::ProcessContext transport{};
    std::uint32_t largestBlock = firstBlock;
    double sampleRate = firstSampleRate;
    int32 processMode = Vst::kRealtime;
    bool active = false;

    explicit Parts(std::shared_ptr<Module> owner) : module(std::move(owner)) {}
    Parts(const Parts&) = delete;
    Parts& operator=(const Parts&) = delete;
    ~Parts() { takeApart(); }

    template <typename Interface>
    ComPointer<Interface> create(const TUID id) {
        void* object = nullptr;
        if (module->loaded->factory->createInstance(id, interfaceId<Interface>(), &object) != kResultOk)
            return {};
        return ComPointer<Interface>::adopt(static_cast<Interface*>(object));
    }

    void chooseClass(TUID id);
    void createController();
    void connect() const;
    void readParameters();
    bool setUp();
    void deactivate();
    void takeApart() noexcept;
    void run(Vst::ProcessData& data);
};

void PluginInstance::Parts::chooseClass(TUID id) {
    const auto all = module->classes();
    const auto effect = std::ranges::find(all, std::string(kVstAudioEffectClass), &ClassInfo::category);
    if (effect == all.end())
        throw HostError("The module \"" + module->binary().string() + "\" offers no audio effect.");
    classId = effect->id;
    name = effect->name;
    version = effect->version;
    Steinberg::PClassInfo info;
    module->loaded->factory->getClassInfo(static_cast<int32>(effect - all.begin()), &info);
    std::memcpy(id, info.cid, sizeof(TUID));
}

void PluginInstance::Parts::createController() {
    // Some plug-ins are one object with both halves; then nothing is to be made or connected.
    controller = query<Vst::IEditController>(component.get());
    if (controller)
        return;
    TUID id{};
    if (component->getControllerClassId(id) == kResultOk)
        controller = create<Vst::IEditController>(id);
    if (!controller || controller->initialize(module->loaded->application.get()) != kResultOk)
        throw HostError("The plug-in \"" + name + "\" has no editing half.");
    ownController = true;
}

void PluginInstance::Parts::connect() const {
    controller->setComponentHandler(handler.get());
    const auto processing = query<Vst::IConnectionPoint>(component.get());
    const auto editing = query<Vst::IConnectionPoint>(controller.get());
    if (ownController && processing && editing) {
        processing->connect(editing.get());
        editing->connect(processing.get());
    }
    // A session begins with the editing half learning what the processing half holds.
    const auto stream = makeHostObject<MemoryStream>();
    if (component->getState(stream.get()) == kResultOk) {
        stream->seek(0, Steinberg::IBStream::kIBSeekSet, nullptr);
        controller->setComponentState(stream.get());
    }
}

void PluginInstance::Parts::readParameters() {
    const int32 count = controller->getParameterCount();
    for (int32 index = 0; index < count; ++index) {
        Vst::ParameterInfo info{};
        if (controller->getParameterInfo(index, info) != kResultOk)
            continue;
        parameters.push_back({info.id, toUtf8(info.title, 128), info.stepCount, info.defaultNormalizedValue,
                              (info.flags & Vst::ParameterInfo::kCanAutomate) != 0,
                              (info.flags & Vst::ParameterInfo::kIsReadOnly) != 0,
                              (info.flags & Vst::ParameterInfo::kIsBypass) != 0});
    }
}

bool PluginInstance::Parts::setUp() {
    Vst::ProcessSetup setup{processMode, Vst::kSample32, static_cast<int32>(largestBlock), sampleRate};
    transport.sampleRate = sampleRate;
    return processor->setupProcessing(setup) == kResultOk;
}

void PluginInstance::Parts::deactivate() {
    if (!active)
        return;
    processor->setProcessing(false);
    component->setActive(false);
    active = false;
}

void PluginInstance::Parts::takeApart() noexcept {
    if (processor)
        deactivate();
    if (ownController) {
        const auto processing = query<Vst::IConnectionPoint>(component.get());
        const auto editing = query<Vst::IConnectionPoint>(controller.get());
        if (processing && editing) {
            processing->disconnect(editing.get());
            editing->disconnect(processing.get());
        }
        controller->setComponentHandler(nullptr);
        controller->terminate();
    }
    controller = {};
    processor = {};
    if (component)
        component->terminate();
    component = {};
}

void PluginInstance::Parts::run(Vst::ProcessData& data) {
    for (const auto& edit : handler->takeWaiting()) {
        int32 index = 0;
        incoming->addParameterData(edit.id, index)->addPoint(0, edit.value, index);
    }
    data.processMode = processMode;
    data.symbolicSampleSize = Vst::kSample32;
    data.inputParameterChanges = incoming.get();
    data.outputParameterChanges = outgoing.get();
    transport.state = Vst::ProcessContext::kPlaying | Vst::ProcessContext::kContTimeValid;
    data.processContext = &transport;
    const auto result = processor->process(data);
    incoming->clear();
    outgoing->clear();
    transport.projectTimeSamples += data.numSamples;
    transport.continousTimeSamples += data.numSamples;
    if (result != kResultOk)
        throw HostError("The plug-in \"" + name + "\" did not process a block.");
}

PluginInstance::PluginInstance(std::shared_ptr<Module> module)
    : parts(std::make_unique<Parts>(std::move(module))) {
    TUID id{};
    parts->chooseClass(id);
    parts->component = parts->create<Vst::IComponent>(id);
    if (!parts->component)
        throw HostError("The plug-in \"" + parts->name + "\" cannot be made.");
    auto component = std::exchange(parts->component, {});
    if (component->initialize(parts->module->loaded->application.get()) != kResultOk)
        throw HostError("The plug-in \"" + parts->name + "\" cannot be initialised.");
    parts->component = std::move(component); // from here on it has to be terminated
    parts->processor = query<Vst::IAudioProcessor>(parts->component.get());
    if (!parts->processor)
        throw HostError("The plug-in \"" + parts->name + "\" processes no audio.");
    parts->createController();
    parts->connect();
    parts->readParameters();
    parts->component->activateBus(Vst::kAudio, Vst::kInput, 0, true);
    parts->component->activateBus(Vst::kAudio, Vst::kOutput, 0, true);
    parts->setUp();
}

PluginInstance::~PluginInstance() = default;

const std::string& PluginInstance::classId() const { return parts->classId; }
const std::string& PluginInstance::name() const { return parts->name; }
const std::string& PluginInstance::version() const { return parts->version; }

bool PluginInstance::setChannelCounts(unsigned inputs, unsigned outputs) {
    return setArrangements(lowestSpeakers(inputs), lowestSpeakers(outputs));
}

bool PluginInstance::setArrangements(std::uint64_t inputs, std::uint64_t outputs) {
    Vst::SpeakerArrangement in = inputs;
    Vst::SpeakerArrangement out = outputs;
    const bool accepted = parts->processor->setBusArrangements(&in, 1, &out, 1) == kResultOk;
    if (!parts->active)
        parts->setUp(); // the framework's wrapper sizes its memory for the buses only here
    return accepted;
}

std::uint64_t PluginInstance::inputArrangement() const {
    Vst::SpeakerArrangement speakers = 0;
    parts->processor->getBusArrangement(Vst::kInput, 0, speakers);
    return speakers;
}

std::uint64_t PluginInstance::outputArrangement() const {
    Vst::SpeakerArrangement speakers = 0;
    parts->processor->getBusArrangement(Vst::kOutput, 0, speakers);
    return speakers;
}

unsigned PluginInstance::inputChannelCount() const {
    return channelCountOf(*parts->component.get(), Vst::kInput);
}
unsigned PluginInstance::outputChannelCount() const {
    return channelCountOf(*parts->component.get(), Vst::kOutput);
}

const std::vector<ParameterInfo>& PluginInstance::parameters() const { return parts->parameters; }

double PluginInstance::normalizedValue(std::uint32_t id) const {
    return parts->controller->getParamNormalized(id);
}

std::string PluginInstance::textOf(std::uint32_t id, double normalized) const {
    Vst::String128 text{};
    if (parts->controller->getParamStringByValue(id, normalized, text) != kResultOk)
        return {};
    return toUtf8(text, 128);
}

void PluginInstance::setParameter(std::uint32_t id, double normalized) {
    parts->controller->setParamNormalized(id, normalized);
    parts->handler->queue({id, normalized});
}

void PluginInstance::automate(std::uint32_t id, double normalized) {
    parts->handler->queue({id, normalized});
}

void PluginInstance::flushParameters() {
    Vst::ProcessData data;
    parts->run(data);
}

void PluginInstance::prepare(double sampleRate, std::uint32_t largestBlock, ProcessMode mode) {
    parts->processMode = mode == ProcessMode::offline ? Vst::kOffline : Vst::kRealtime;
    parts->largestBlock = largestBlock;
    parts->sampleRate = sampleRate;
    if (!parts->setUp())
        throw HostError("The plug-in \"" + parts->name + "\" refused the sample rate or block size.");
    if (parts->component->setActive(true) != kResultOk)
        throw HostError("The plug-in \"" + parts->name + "\" cannot be activated.");
    parts->active = true;
    parts->processor->setProcessing(true);
}

void PluginInstance::release() { parts->deactivate(); }

std::uint32_t PluginInstance::latency() const { return parts->processor->getLatencySamples(); }
std::uint32_t PluginInstance::tailLength() const { return parts->processor->getTailSamples(); }

void PluginInstance::process(std::span<const float* const> inputs, std::span<float* const> outputs,
                             std::uint32_t frames) {
    if (inputs.size() != inputChannelCount() || outputs.size() != outputChannelCount())
        throw HostError("A block must have as many channels as the plug-in's buses.");
    if (frames > parts->largestBlock)
        throw HostError("A block of " + std::to_string(frames) + " samples is larger than the announced " +
                        std::to_string(parts->largestBlock) + ".");
    Vst::AudioBusBuffers in;
    in.numChannels = static_cast<int32>(inputs.size());
    // The interfaces know no constant buffers; a plug-in must not write to its inputs.
    in.channelBuffers32 = const_cast<float**>(inputs.data());
    Vst::AudioBusBuffers out;
    out.numChannels = static_cast<int32>(outputs.size());
    out.channelBuffers32 = const_cast<float**>(outputs.data());
    Vst::ProcessData data;
    data.numSamples = static_cast<int32>(frames);
    data.numInputs = 1;
    data.inputs = &in;
    data.numOutputs = 1;
    data.outputs = &out;
    parts->run(data);
}

PluginState PluginInstance::state() const {
    const auto component = makeHostObject<MemoryStream>();
    if (parts->component->getState(component.get()) != kResultOk)
        throw HostError("The plug-in \"" + parts->name + "\" gave no state.");
    const auto controller = makeHostObject<MemoryStream>();
    const bool kept = parts->controller->getState(controller.get()) == kResultOk;
    return {component->content(), kept ? controller->content() : std::vector<std::byte>{}};
}

void PluginInstance::setState(const PluginState& state) {
    // A rejected chunk changes nothing, and whether it was rejected is the plug-in's secret: the framework's
    // wrapper answers "ok" to any bytes.
    const auto component = makeHostObject<MemoryStream>(state.component);
    if (parts->component->setState(component.get()) != kResultOk)
        throw HostError("The plug-in \"" + parts->name + "\" did not take the state.");
    component->seek(0, Steinberg::IBStream::kIBSeekSet, nullptr);
    parts->controller->setComponentState(component.get());
    if (!state.controller.empty()) {
        const auto controller = makeHostObject<MemoryStream>(state.controller);
        parts->controller->setState(controller.get());
    }
}

std::uint32_t PluginInstance::gestureCount() const { return parts->handler->gestureCount; }
std::uint32_t PluginInstance::editCount() const { return parts->handler->editCount; }

Vst::IEditController& PluginInstance::controller() const { return *parts->controller.get(); }

} // namespace orvane::kestrum::host
