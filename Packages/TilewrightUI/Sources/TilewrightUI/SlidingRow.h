#pragma once

#include "Spring.h"

#include <QWidget>

class QGraphicsOpacityEffect;

namespace tilewright {

/// A row below others that comes and goes: it slides from and to its top edge while it fades, and
/// takes no room once it is gone. Its buttons take no more input on their way out, and what focus
/// they have goes to the focus heir.
class SlidingRow final : public QWidget {
    Q_OBJECT

public:
    /// Takes ownership of the content. The gap, in points, is kept free above the content while it
    /// is there.
    SlidingRow(QWidget* content, int gap, Spring spring, QWidget* parent = nullptr);
    ~SlidingRow() override;

    /// The widget that has the keyboard focus after a focused row has gone; outlives this.
    void setFocusHeir(QWidget* heir) { focusHeir_ = heir; }
    /// Inserts or removes the row; at once while it is not on screen.
    void setPresent(bool present);
    /// How much of the row is there: 0 to 1.
    [[nodiscard]] double presence() const { return presence_.value(); }
    /// How much of its height it does not take now, in points.
    [[nodiscard]] int heightToCome() const;

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override { return sizeHint(); }

protected:
    bool event(QEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] int shownHeight() const;
    void placeContent();
    void setTakesInput(bool takesInput);

    QWidget* content_;
    QGraphicsOpacityEffect* fade_;
    QWidget* focusHeir_ = nullptr;
    const int gap_;
    bool isPresent_ = true;
    SpringAnimation presence_;
};

} // namespace tilewright
