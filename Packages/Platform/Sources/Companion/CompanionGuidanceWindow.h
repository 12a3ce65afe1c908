#pragma once

#include <QString>
#include <QWidget>

class QLabel;
class QPushButton;

namespace tilewright {

/// A step of the way to a companion that runs, as the user is told of it.
struct CompanionGuidanceStep {
    QString title;
    QString text;
    /// What a button offers to do; empty where the user can only do it elsewhere.
    QString action;

    friend bool operator==(const CompanionGuidanceStep&, const CompanionGuidanceStep&) = default;
};

/// A small window that tells one step of the way to a companion that runs. Main thread only.
class CompanionGuidanceWindow final : public QWidget {
    Q_OBJECT

public:
    CompanionGuidanceWindow();
    ~CompanionGuidanceWindow() override;

    void setStep(const CompanionGuidanceStep& step);

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
