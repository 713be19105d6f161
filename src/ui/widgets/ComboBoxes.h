// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "ui/widgets/ComboBoxLookAndFeel.h"

#include <memory>

namespace orvane {

/// What both heights of combo box have in common. The wheel leaves them alone: what they choose is too dear to be
/// changed by scrolling past.
///
/// Thread  message thread.
class PictureComboBox : public juce::ComboBox {
protected:
    PictureComboBox(const juce::String& name, std::unique_ptr<ComboBoxLookAndFeel> look);

public:
    ~PictureComboBox() override;

private:
    std::unique_ptr<ComboBoxLookAndFeel> look;
};

class ComboBox24px final : public PictureComboBox {
public:
    /// @param owner the component that the box lies in; borrowed.
    ComboBox24px(juce::Component& owner, const juce::String& name, const juce::Typeface::Ptr& typeface,
                 float fontHeight);
};

class ComboBox36px final : public PictureComboBox {
public:
    ComboBox36px(juce::Component& owner, const juce::String& name); ///< `owner` as above.
};

} // namespace orvane
