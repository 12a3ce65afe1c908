#pragma once

#include <QPointer>
#include <QWidget>

class QAbstractButton;

namespace tilewright {

/// Makes a button easier to hit than it is large: presses around it are its own, over at least
/// 24 x 24 points. Nothing of it is seen, and the button stays what and where it is.
class HitArea final : public QWidget {
    Q_OBJECT

public:
    /// The least width and height, in points.
    static constexpr int leastSide = 24;

    /// Grows outward from the button, a descendant of `holder`, as far as the holder goes. The
    /// holder owns it; it goes with its button.
    HitArea(QAbstractButton* button, QWidget* holder);

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;
    bool event(QEvent* event) override;

private:
    void follow();
    void passOn(const QMouseEvent& event);

    QPointer<QAbstractButton> button_;
};

} // namespace tilewright
