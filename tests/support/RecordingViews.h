// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "core/IBackgroundImage.h"
#include "core/ISelector.h"
#include "core/ISlider.h"
#include "core/ITimer.h"
#include "core/IToggle.h"

#include <cstdint>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace test {

/// What views were told, in order: "dial = 30", "dial off".
class ViewLog {
public:
    template <typename... Parts>
    void add(const Parts&... parts) {
        std::ostringstream line;
        (line << ... << parts);
        lines.push_back(line.str());
    }

    /// What has been told since the last asking.
    std::vector<std::string> take() { return std::exchange(lines, {}); }

private:
    std::vector<std::string> lines;
};

/// A control without a widget. As a widget does, it reports a change to its listeners, whoever made it, and is
/// silent about what it shows already.
template <typename Interface, typename T>
class RecordingControl : public Interface {
public:
    using Listener = typename Interface::Listener;

    RecordingControl(std::string name, ViewLog& log, T shown)
        : name(std::move(name)), log(&log), shown(shown) {}
    ~RecordingControl() override {
        log->add(name, listeners.empty() ? " gone" : " gone while somebody listens");
    }
    RecordingControl(const RecordingControl&) = delete;
    RecordingControl& operator=(const RecordingControl&) = delete;

    void setValue(T value) override {
        log->add(name, " = ", value);
        move(value);
    }
    T getValue() const override { return shown; }
    void addListener(Listener* listener) override { listeners.insert(listener); }
    void removeListener(Listener* listener) override { listeners.erase(listener); }

    /// What a person does.
    void move(T value) {
        if (value == shown)
            return;
        shown = value;
        for (Listener* const listener : listeners)
            listener->valueChanged();
    }

protected:
    std::string name;
    ViewLog* log;

private:
    T shown;
    std::set<Listener*> listeners;
};

class RecordingSlider final : public RecordingControl<orvane::kestrum::core::ISlider, float> {
public:
    /// @param name starts the lines of the log, which is borrowed.
    RecordingSlider(std::string name, ViewLog& log) : RecordingControl(std::move(name), log, 0.0f) {}
    void setEnabled(bool enabled) override { log->add(name, enabled ? " on" : " off"); }
};

class RecordingSelector final : public RecordingControl<orvane::kestrum::core::ISelector, std::uint32_t> {
public:
    RecordingSelector(std::string name, ViewLog& log) : RecordingControl(std::move(name), log, 0u) {}
    void setItemEnabled(std::uint32_t id, bool enabled) override {
        log->add(name, " ", id, enabled ? " on" : " off");
    }
};

class RecordingToggle final : public RecordingControl<orvane::kestrum::core::IToggle, bool> {
public:
    RecordingToggle(std::string name, ViewLog& log) : RecordingControl(std::move(name), log, false) {}
};

class RecordingBackground final : public orvane::kestrum::core::IBackgroundImage {
public:
    explicit RecordingBackground(ViewLog& log) : log(&log) {}
    ~RecordingBackground() override { log->add("background gone"); }
    RecordingBackground(const RecordingBackground&) = delete;
    RecordingBackground& operator=(const RecordingBackground&) = delete;
    void setBlurred(bool blurred) override { log->add("background ", blurred ? "blurred" : "sharp"); }

private:
    ViewLog* log;
};

/// Ticks when the test says so.
class HandTimer final : public orvane::kestrum::core::ITimer {
public:
    explicit HandTimer(ViewLog& log) : log(&log) {}
    ~HandTimer() override { log->add("timer gone", listeners.empty() ? "" : " while somebody listens"); }
    HandTimer(const HandTimer&) = delete;
    HandTimer& operator=(const HandTimer&) = delete;
    void addListener(Listener* listener) override { listeners.insert(listener); }
    void removeListener(Listener* listener) override { listeners.erase(listener); }

    void tick() {
        for (Listener* const listener : listeners)
            listener->timerCallback();
    }

private:
    ViewLog* log;
    std::set<Listener*> listeners;
};

} // namespace test
