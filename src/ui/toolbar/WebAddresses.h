// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

/// Where the help toolbar and the warning lead. The hosts are of the domain that is reserved for examples: a seller puts
/// its own here.
namespace BrevikPluginTools::web {

inline constexpr const char* seller = "https://lorimond.example.org/";
inline constexpr const char* productInfo = "https://lorimond.example.org/plugins/orvane_kestrum";
inline constexpr const char* downloads = "https://lorimond.example.org/downloads/orvane_kestrum";
inline constexpr const char* maker =
    "https://orvane.example.org/"
    "?utm_campaign=orvane-products&utm_source=orvane-kestrum&utm_medium=plugin&utm_content=banner";
inline constexpr const char* supportPage = "https://lorimond.example.org/support";
inline constexpr const char* supportMail = "support@lorimond.example.org";

} // namespace BrevikPluginTools::web
