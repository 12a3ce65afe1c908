#pragma once

#include <QPushButton>

namespace tilewright {

/// A button that is on or off as a model says, and never by itself: using it, by pointer, keyboard
/// or an assistive tool, only asks for the other state, and the model's answer arrives through
/// `setOn`. Space and Enter use it.
class AskingToggle : public QPushButton {
    Q_OBJECT

public:
    explicit AskingToggle(QWidget* parent = nullptr);

    [[nodiscard]] bool isOn() const { return isChecked(); }
    /// Shows the model's state.
    void setOn(bool on);

Q_SIGNALS:
    /// The user asked for this state.
    void toggleRequested(bool on);

protected:
    void nextCheckState() override { Q_EMIT toggleRequested(!isChecked()); }
    void checkStateSet() override;

private:
    bool isShowingModel_ = false;
};

} // namespace tilewright
