// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

namespace orvane::kestrum::core {

/// A presenter listens to a value and to a view, and both call their operation valueChanged(). These two bases
/// give each side a name of its own.
template <typename Value>
class ValueListener : public Value::Listener {
protected:
    virtual void modelChanged() = 0;

private:
    void valueChanged() final { modelChanged(); }
};

template <typename View>
class ViewListener : public View::Listener {
protected:
    virtual void viewChanged() = 0;

private:
    void valueChanged() final { viewChanged(); }
};

} // namespace orvane::kestrum::core
