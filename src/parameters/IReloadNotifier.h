// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane {

/// Hears of changes that a running engine cannot follow.
class IReloadListener {
public:
    virtual ~IReloadListener() = default;

    /// Called synchronously on the thread of the change, so it has to be cheap: it sets a flag.
    virtual void reloadRequested() = 0;
};

/// The rendering parameter set as the engine manager sees it.
///
/// Thread  listeners come and go on any thread that may take a mutex, also while values change on others;
///         zmtl::Listeners tells what a removal means.
class IReloadNotifier {
public:
    virtual ~IReloadNotifier() = default;

    /// Appends. @param listener borrowed until it is removed.
    virtual void addReloadListener(IReloadListener* listener) = 0;

    /// Removes every occurrence of `listener`.
    virtual void removeReloadListener(IReloadListener* listener) = 0;
};

} // namespace orvane
