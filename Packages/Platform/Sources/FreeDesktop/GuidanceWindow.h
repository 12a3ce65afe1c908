#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QPushButton;

namespace tilewright {

/// A step of the way to a desktop that moves windows, as the user is told of it.
struct GuidanceStep {
    QString title;
    QString text;
    /// What a button offers to do; empty where the user can only do it elsewhere.
    QString action;

    friend bool operator==(const GuidanceStep&, const GuidanceStep&) = default;
};

/// A small window that tells one step of the way to a desktop that moves windows. Main thread only.
class GuidanceWindow final : public QWidget {
    Q_OBJECT

public:
    GuidanceWindow();
    ~GuidanceWindow() override;

    void setStep(const GuidanceStep& step);

Q_SIGNALS:
    /// The user wants done what the step offers.
    void actionChosen();
    /// The window has gone from the screen.
    void closed();

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    QLabel* title_;
    QLabel* text_;
    QPushButton* action_;
    QPushButton* close_;
};

} // namespace tilewright
