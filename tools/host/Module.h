// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace orvane::kestrum::host {

/// One class that a module offers, as its factory describes it.
struct ClassInfo {
    std::string id; ///< 32 hexadecimal digits.
    std::string name;
    std::string category;
    std::string subCategories;
    std::string vendor;
    std::string version;
    std::string sdkVersion;
};

/// A loaded VST3 bundle. The code stays mapped until the last owner is gone.
///
/// Thread  constructed and destroyed on one thread.
/// Errors  the constructor throws HostError when the folder is no bundle for this machine, its binary cannot
/// be
///         loaded, lacks an entry point, or refuses to start.
class Module {
public:
    /// The bundle: the folder whose name ends in ".vst3".
    explicit Module(const std::filesystem::path& bundle);
    Module(const Module&) = delete;
    Module& operator=(const Module&) = delete;
    ~Module();

    const std::filesystem::path& binary() const;
    std::vector<ClassInfo> classes() const;

    /// Where the binary of a bundle lies for this machine; it need not exist.
    static std::filesystem::path binaryOf(const std::filesystem::path& bundle);

private:
    friend class PluginInstance;
    struct Loaded;
    std::unique_ptr<Loaded> loaded;
};

} // namespace orvane::kestrum::host
