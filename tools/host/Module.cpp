// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/Module.h"

#include "host/HostError.h"
#include "host/HostObjects.h"
#include "host/ModuleLoaded.h"

#include <dlfcn.h>

#include <cstring>
#include <string_view>

namespace orvane::kestrum::host {

namespace {

#if defined(__x86_64__)
constexpr const char* machine = "x86_64-linux";
#elif defined(__aarch64__)
constexpr const char* machine = "aarch64-linux";
#else
#    error "name this machine's folder inside a VST3 bundle"
#endif

template <std::size_t capacity>
std::string bounded(const char (&text)[capacity]) {
    return {text, strnlen(text, capacity)};
}

} // namespace

Module::Loaded::Loaded(const std::filesystem::path& bundle) : binary(binaryOf(bundle)) {
    if (!std::filesystem::is_directory(bundle))
        throw HostError("There is no VST3 bundle at \"" + bundle.string() + "\".");
    if (!std::filesystem::exists(binary))
        throw HostError("The bundle \"" + bundle.string() + "\" holds no module for this machine (" +
                        machine + "): name one that was built for it.");
}

Module::Loaded::~Loaded() {
    factory = {};
    application = {};
    if (exit != nullptr)
        exit();
    if (library != nullptr)
        dlclose(library);
}

Module::Module(const std::filesystem::path& bundle) : loaded(std::make_unique<Loaded>(bundle)) {
    // RTLD_LOCAL keeps the module's symbols from other modules, as hosts do.
    loaded->library = dlopen(loaded->binary.c_str(), RTLD_NOW | RTLD_LOCAL);
    if (loaded->library == nullptr)
        throw HostError(std::string("The module cannot be loaded: ") + dlerror() + ".");

    const auto symbol = [this](const char* name) {
        void* const address = dlsym(loaded->library, name);
        if (address == nullptr)
            throw HostError("The module \"" + loaded->binary.string() + "\" has no entry point " + name +
                            ".");
        return address;
    };
    const auto enter = reinterpret_cast<bool (*)(void*)>(symbol("ModuleEntry"));
    const auto exit = reinterpret_cast<bool (*)()>(symbol("ModuleExit"));
    const auto getFactory = reinterpret_cast<Steinberg::IPluginFactory* (*)()>(symbol("GetPluginFactory"));

    if (!enter(loaded->library))
        throw HostError("The module \"" + loaded->binary.string() + "\" refused to start.");
    loaded->exit = exit;
    loaded->application = makeHostObject<HostApplication>();
    loaded->factory = ComPointer<Steinberg::IPluginFactory>::adopt(getFactory());
    if (!loaded->factory)
        throw HostError("The module \"" + loaded->binary.string() + "\" gave no factory.");
    if (const auto factory = query<Steinberg::IPluginFactory3>(loaded->factory.get()))
        factory->setHostContext(loaded->application.get());
}

Module::~Module() = default;

const std::filesystem::path& Module::binary() const { return loaded->binary; }

std::filesystem::path Module::binaryOf(const std::filesystem::path& bundle) {
    // A path that ends in a slash has an empty file name.
    const auto folder = bundle.has_filename() ? bundle : bundle.parent_path();
    return folder / "Contents" / machine / (folder.stem().string() + ".so");
}

std::vector<ClassInfo> Module::classes() const {
    std::vector<ClassInfo> all;
    const auto detailed = query<Steinberg::IPluginFactory2>(loaded->factory.get());
    for (Steinberg::int32 index = 0; index < loaded->factory->countClasses(); ++index) {
        Steinberg::PClassInfo2 info;
        if (detailed && detailed->getClassInfo2(index, &info) == Steinberg::kResultOk) {
            all.push_back({toHexadecimal(info.cid), bounded(info.name), bounded(info.category),
                           bounded(info.subCategories), bounded(info.vendor), bounded(info.version),
                           bounded(info.sdkVersion)});
            continue;
        }
        Steinberg::PClassInfo plain;
        if (loaded->factory->getClassInfo(index, &plain) == Steinberg::kResultOk)
            all.push_back(
                {toHexadecimal(plain.cid), bounded(plain.name), bounded(plain.category), "", "", "", ""});
    }
    return all;
}

} // namespace orvane::kestrum::host
