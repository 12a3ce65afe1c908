#pragma once

#include <Platform/MainLoop.h>

#include <QPointer>
#include <QWidget>

namespace tilewright {

class GlassButton;
class SymbolView;
class TextLabel;

/// The accessibility tab: whether this program may move other applications' windows, and the way
/// to where that is granted. While it is on screen it looks again every two seconds; it never asks
/// the desktop to prompt the user.
class AccessibilitySettingsView final : public QWidget {
    Q_OBJECT

public:
    explicit AccessibilitySettingsView(QWidget* parent = nullptr);
    ~AccessibilitySettingsView() override;

    /// What the last look told.
    [[nodiscard]] bool isTrusted() const { return isTrusted_; }

    [[nodiscard]] SymbolView* symbol() const { return symbol_; }
    [[nodiscard]] TextLabel* message() const { return message_; }
    /// Hidden while trusted.
    [[nodiscard]] GlassButton* openSettingsButton() const { return button_; }

protected:
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    void setTrusted(bool trusted);
    void startOrStopPolling();

    bool isTrusted_ = false;
    SymbolView* symbol_;
    TextLabel* message_;
    GlassButton* button_;
    QPointer<QWidget> watchedWindow_;
    ScopedTimer poll_;
};

} // namespace tilewright
