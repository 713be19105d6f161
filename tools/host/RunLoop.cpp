// SPDX-License-Identifier: GPL-3.0-or-later
#include "host/RunLoop.h"

#include <poll.h>

#include <algorithm>

namespace orvane::kestrum::host {

using Steinberg::kInvalidArgument;
using Steinberg::kResultFalse;
using Steinberg::kResultOk;
using Steinberg::tresult;

namespace {

/// One more owner of an object that the plug-in has lent.
template <typename Interface>
ComPointer<Interface> share(Interface* lent) {
    lent->addRef();
    return ComPointer<Interface>::adopt(lent);
}

} // namespace

tresult RunLoop::resizeView(Steinberg::IPlugView* view, Steinberg::ViewRect* size) {
    if (view == nullptr || size == nullptr)
        return kInvalidArgument;
    if (!resize || !resize(*size))
        return kResultFalse;
    return view->onSize(size);
}

tresult RunLoop::registerEventHandler(Steinberg::Linux::IEventHandler* handler,
                                      Steinberg::Linux::FileDescriptor descriptor) {
    if (handler == nullptr || descriptor < 0)
        return kInvalidArgument;
    descriptors.push_back({share(handler), descriptor});
    return kResultOk;
}

tresult RunLoop::unregisterEventHandler(Steinberg::Linux::IEventHandler* handler) {
    const auto count = std::erase_if(
        descriptors, [handler](const Descriptor& entry) { return entry.handler.get() == handler; });
    return count > 0 ? kResultOk : kInvalidArgument;
}

tresult RunLoop::registerTimer(Steinberg::Linux::ITimerHandler* handler,
                               Steinberg::Linux::TimerInterval milliseconds) {
    if (handler == nullptr || milliseconds == 0)
        return kInvalidArgument;
    const std::chrono::milliseconds interval(milliseconds);
    timers.push_back({share(handler), interval, Clock::now() + interval});
    return kResultOk;
}

tresult RunLoop::unregisterTimer(Steinberg::Linux::ITimerHandler* handler) {
    const auto count =
        std::erase_if(timers, [handler](const Timer& entry) { return entry.handler.get() == handler; });
    return count > 0 ? kResultOk : kInvalidArgument;
}

void RunLoop::serve(int windowDescriptor, std::chrono::milliseconds longest) {
    for (const auto& ready : waitForDescriptors(windowDescriptor, longest))
        // an earlier handler may have taken this one out
        if (std::ranges::find(descriptors, ready) != descriptors.end())
            ready.handler->onFDIsSet(ready.descriptor);
    callTimers();
}

std::vector<RunLoop::Descriptor> RunLoop::waitForDescriptors(int windowDescriptor,
                                                             std::chrono::milliseconds longest) const {
    auto wait = longest;
    for (const auto& timer : timers)
        wait = std::min(wait, std::chrono::ceil<std::chrono::milliseconds>(timer.due - Clock::now()));
    std::vector<pollfd> polled{{windowDescriptor, POLLIN, 0}}; // poll passes over negative ones
    for (const auto& entry : descriptors)
        polled.push_back({entry.descriptor, POLLIN, 0});
    std::vector<Descriptor> ready;
    if (poll(polled.data(), polled.size(), static_cast<int>(std::max<long>(0, wait.count()))) <= 0)
        return ready;
    for (std::size_t index = 0; index < descriptors.size(); ++index)
        if ((polled[index + 1].revents & (POLLIN | POLLHUP | POLLERR)) != 0)
            ready.push_back(descriptors[index]);
    return ready;
}

void RunLoop::callTimers() {
    const auto now = Clock::now();
    std::vector<ComPointer<Steinberg::Linux::ITimerHandler>> due;
    for (auto& timer : timers)
        if (timer.due <= now) {
            timer.due = now + timer.interval; // late calls are not made up for
            due.push_back(timer.handler);
        }
    const auto isKnown = [this](Steinberg::Linux::ITimerHandler* handler) {
        return std::ranges::any_of(timers,
                                   [handler](const Timer& timer) { return timer.handler.get() == handler; });
    };
    for (const auto& handler : due)
        if (isKnown(handler.get()))
            handler->onTimer();
}

} // namespace orvane::kestrum::host
