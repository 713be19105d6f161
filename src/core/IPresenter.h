// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// Keeps one user value and its view equal as long as it lives; the editor owns it.
///
/// Thread  made and destroyed on the message thread. A value calls on whatever thread changes it, a host's
///         included; views take such calls from any thread.
class IPresenter {
public:
    virtual ~IPresenter() = default;
};

} // namespace orvane::kestrum::core
