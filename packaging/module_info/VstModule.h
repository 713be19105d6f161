// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <pluginterfaces/base/ipluginbase.h>

#include <string>
#include <vector>

/// A loaded VST3 module, entered on construction, left and unloaded on destruction.
///
/// Errors  the constructor throws std::runtime_error with the reason.
class VstModule {
public:
    explicit VstModule(const std::string& file);
    ~VstModule();
    VstModule(const VstModule&) = delete;
    VstModule& operator=(const VstModule&) = delete;

    Steinberg::PFactoryInfo factoryInfo() const;
    std::vector<Steinberg::PClassInfo2> classes() const;

    /// Borrowed; valid as long as the module is loaded.
    Steinberg::IPluginFactory2& factory() const { return *pluginFactory; }

private:
    void* handle = nullptr;
    Steinberg::IPluginFactory2* pluginFactory = nullptr;
};
