#pragma once

#include <QDialog>

namespace tilewright {

class GlassButton;
class TextLabel;

/// Asks before something is destroyed. Not confirming is what Enter, Escape and closing do.
///
/// `finished` tells the outcome: `Accepted` where the user confirmed. Open it, never execute it.
class ConfirmationDialog final : public QDialog {
    Q_OBJECT

public:
    /// The dialog is never wider than this, in points, whatever is in its title.
    static constexpr int greatestWidth = 420;

    /// A title too wide for the dialog is shortened in its middle; the message runs on over several
    /// lines; the action names what is confirmed.
    ConfirmationDialog(const QString& title, const QString& message, const QString& action,
                       QWidget* parent);

    [[nodiscard]] TextLabel* title() const { return title_; }
    [[nodiscard]] TextLabel* message() const { return message_; }
    [[nodiscard]] GlassButton* confirmButton() const { return confirm_; }
    [[nodiscard]] GlassButton* cancelButton() const { return cancel_; }

private:
    void fitWidth();

    TextLabel* title_;
    TextLabel* message_;
    GlassButton* cancel_;
    GlassButton* confirm_;
};

} // namespace tilewright
