// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/HostObjects.h"
#include "host/Module.h"
#include "host/Vst3.h"

#include <filesystem>

namespace orvane::kestrum::host {

/// The inside of a Module. Released from bottom to top: the factory before the code it runs in.
struct Module::Loaded {
    explicit Loaded(const std::filesystem::path& bundle);
    Loaded(const Loaded&) = delete;
    Loaded& operator=(const Loaded&) = delete;
    ~Loaded();

    std::filesystem::path binary;
    void* library = nullptr;
    bool (*exit)() = nullptr; ///< Null until the module has been entered.
    ComPointer<HostApplication> application;
    ComPointer<Steinberg::IPluginFactory> factory;
};

} // namespace orvane::kestrum::host
