#pragma once

#include "AskingToggle.h"
#include "Spring.h"

namespace tilewright {

/// A switch in the accent colour that shows a model's state and never one of its own: using it
/// only asks for the other state (`toggleRequested`), and it moves when the model's answer arrives
/// through `setOn`. On screen the knob slides there.
class ToggleSwitch final : public AskingToggle {
    Q_OBJECT

public:
    /// The switch has no visible label; the name is what assistive tools call it.
    explicit ToggleSwitch(const QString& accessibleName, QWidget* parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override { return {38, 22}; }

protected:
    void hideEvent(QHideEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void slide();

    SpringAnimation knob_;
};

} // namespace tilewright
