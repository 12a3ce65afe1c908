#pragma once

#include "GnomeGuidance.h"

#include <QWidget>

class QLabel;
class QPushButton;

namespace tilewright {

/// A small window that tells one step of the way to a companion that runs. Main thread only.
class GnomeGuidanceWindow final : public QWidget {
    Q_OBJECT

public:
    GnomeGuidanceWindow();
    ~GnomeGuidanceWindow() override;

    void setStep(const GnomeGuidance::Step& step);

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
