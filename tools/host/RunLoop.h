// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "host/Vst3.h"

#include <chrono>
#include <functional>
#include <vector>

// What a plug-in's view is served by on this system. For this folder's .cpp files only.

namespace orvane::kestrum::host {

/// The frame around a view and, as the interfaces want it here, the loop that serves the view's file descriptors
/// and timers: the system itself has no common one.
///
/// Thread  the thread that shows the window.
class RunLoop final : public HostObject<Steinberg::IPlugFrame, Steinberg::Linux::IRunLoop> {
public:
    using Clock = std::chrono::steady_clock;

    Steinberg::tresult PLUGIN_API resizeView(Steinberg::IPlugView* view, Steinberg::ViewRect* size) override;
    Steinberg::tresult PLUGIN_API registerEventHandler(Steinberg::Linux::IEventHandler* handler,
                                                       Steinberg::Linux::FileDescriptor descriptor) override;
    Steinberg::tresult PLUGIN_API unregisterEventHandler(Steinberg::Linux::IEventHandler* handler) override;
    Steinberg::tresult PLUGIN_API registerTimer(Steinberg::Linux::ITimerHandler* handler,
                                                Steinberg::Linux::TimerInterval milliseconds) override;
    Steinberg::tresult PLUGIN_API unregisterTimer(Steinberg::Linux::ITimerHandler* handler) override;

    /// Waits until a descriptor can be read, a timer is due or the time is over, and calls those concerned once.
    /// Handlers may register and unregister anything meanwhile.
    /// @param  windowDescriptor  ends the wait too, and has no handler; -1 for none.
    void serve(int windowDescriptor, std::chrono::milliseconds longest);

    std::size_t descriptorCount() const { return descriptors.size(); }
    std::size_t timerCount() const { return timers.size(); }

    /// Called when a view asks for another size, before it is told that it has it. @return false refuses.
    std::function<bool(const Steinberg::ViewRect&)> resize;

private:
    struct Descriptor {
        ComPointer<Steinberg::Linux::IEventHandler> handler;
        Steinberg::Linux::FileDescriptor descriptor;
        bool operator==(const Descriptor& other) const {
            return handler.get() == other.handler.get() && descriptor == other.descriptor;
        }
    };
    struct Timer {
        ComPointer<Steinberg::Linux::ITimerHandler> handler;
        std::chrono::milliseconds interval;
        Clock::time_point due;
    };

    std::vector<Descriptor> waitForDescriptors(int windowDescriptor, std::chrono::milliseconds longest) const;
    void callTimers();

    std::vector<Descriptor> descriptors;
    std::vector<Timer> timers;
};

} // namespace orvane::kestrum::host
