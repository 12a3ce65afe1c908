#pragma once

#include "Look.h"

#include <QLabel>

namespace tilewright {

/// A text in one of the shared styles, always plain: what a user named "<b>" or "A & B" reads so.
/// It follows the application's font and palette while it lives.
class TextLabel final : public QLabel {
    Q_OBJECT

public:
    enum class Importance { primary, secondary };
    /// What happens to a text that is wider than the label.
    enum class Overflow {
        /// The label asks for the text's whole width, on one line.
        none,
        /// It runs on over further lines.
        wrap,
        /// It ends in an ellipsis.
        elide,
        /// Its middle gives way to an ellipsis.
        elideMiddle,
        /// It shrinks to 80 % at most, then ends in an ellipsis.
        shrinkThenElide,
    };

    explicit TextLabel(const QString& text, look::TextStyle style,
                       Importance importance = Importance::primary, QWidget* parent = nullptr);

    void setOverflow(Overflow overflow);

    [[nodiscard]] look::TextStyle style() const { return style_; }
    [[nodiscard]] Importance importance() const { return importance_; }

    /// What is painted at the present width: the text, or its shortened form.
    [[nodiscard]] QString shownText() const { return fitted().text; }
    /// The whole text as a tool tip where only a part of it is painted; none otherwise.
    [[nodiscard]] QString toolTipText() const;
    /// The share of its style's size at which the text is painted at the present width: 0.8 to 1.
    [[nodiscard]] double shownScale() const { return fitted().scale; }

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    bool event(QEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    struct Fitted {
        QString text;
        QFont font;
        double scale = 1;
    };
    [[nodiscard]] Fitted fitted() const;

    const look::TextStyle style_;
    const Importance importance_;
    Overflow overflow_ = Overflow::none;
};

} // namespace tilewright
