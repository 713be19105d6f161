// SPDX-License-Identifier: GPL-3.0-or-later
#include "data/TenmarshHrir.h"
#include "data/TenmarshHrirReader.h"
#include "engine/assembly/ComponentFactory.h"
#include "ipc/OrvaneParameterFactory.h"
#include "shell/ChannelConfigurations.h"
#include "shell/Factory.h"
#include "shell/Processor.h"

#include <memory>
#include <string>
#include <utility>

namespace {

using namespace orvane::kestrum;

std::string dataDirectory() {
    return juce::File::getSpecialLocation(juce::File::commonApplicationDataDirectory)
        .getChildFile("Tenmarsh")
        .getChildFile("OrvaneVSTPlugin")
        .getChildFile("data")
        .getFullPathName()
        .toStdString();
}

} // namespace

/// The framework's hook: one processor per plug-in instance, owned by the caller.
juce::AudioProcessor* JUCE_CALLTYPE createPluginFilter() {
    auto parameterClient = OrvaneIPC::OrvaneParameterFactory().createClient();
    auto componentFactory = std::make_unique<core::ComponentFactory>();
    auto factory = std::make_unique<Factory>(componentFactory.get());
    return std::make_unique<Processor>(
               "Orvane KESTRUM", std::move(componentFactory), std::move(factory), std::move(parameterClient),
               orvane::processWideHrir(std::make_unique<orvane::TenmarshHrirReader>()), channelConfigurations,
               dataDirectory)
        .release();
}
