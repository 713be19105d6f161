// SPDX-License-Identifier: GPL-3.0-or-later
#include "VstModule.h"

#include <stdexcept>

#include <dlfcn.h>

namespace {

using Steinberg::IPluginFactory;
using Steinberg::IPluginFactory2;

template <typename Function>
Function find(void* handle, const char* name) {
    void* const symbol = dlsym(handle, name);
    if (symbol == nullptr)
        throw std::runtime_error(std::string("the module does not export ") + name);
    return reinterpret_cast<Function>(symbol);
}

IPluginFactory2* enter(void* handle) {
    if (!find<bool (*)(void*)>(handle, "ModuleEntry")(handle))
        throw std::runtime_error("the module refuses to be entered");
    IPluginFactory* const first = find<IPluginFactory* (*)()>(handle, "GetPluginFactory")();
    if (first == nullptr)
        throw std::runtime_error("the module has no factory");
    void* second = nullptr;
    const auto result = first->queryInterface(Steinberg::IPluginFactory2_iid, &second);
    first->release();
    if (result != Steinberg::kResultOk || second == nullptr)
        throw std::runtime_error("the module's factory is of the first generation");
    return static_cast<IPluginFactory2*>(second);
}

} // namespace

VstModule::VstModule(const std::string& file) : handle(dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (handle == nullptr)
        throw std::runtime_error(dlerror());
    try {
        pluginFactory = enter(handle);
    } catch (...) {
        dlclose(handle);
        throw;
    }
}

VstModule::~VstModule() {
    pluginFactory->release();
    if (void* const leave = dlsym(handle, "ModuleExit"); leave != nullptr)
        reinterpret_cast<bool (*)()>(leave)();
    dlclose(handle);
}

Steinberg::PFactoryInfo VstModule::factoryInfo() const {
    Steinberg::PFactoryInfo info;
    if (pluginFactory->getFactoryInfo(&info) != Steinberg::kResultOk)
        throw std::runtime_error("the module's factory does not describe itself");
    return info;
}

std::vector<Steinberg::PClassInfo2> VstModule::classes() const {
    std::vector<Steinberg::PClassInfo2> all(static_cast<std::size_t>(pluginFactory->countClasses()));
    for (std::size_t index = 0; index < all.size(); ++index)
        if (pluginFactory->getClassInfo2(static_cast<Steinberg::int32>(index), &all[index]) !=
            Steinberg::kResultOk)
            throw std::runtime_error("the module's factory does not describe one of its classes");
    return all;
}
