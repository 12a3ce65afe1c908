#pragma once

#include "Look.h"

#include <QPushButton>

namespace tilewright {

/// A push button in the program's own look: a title, plain text, with a symbol before it where it
/// has one, and a chevron after it where it opens a menu. Space and Enter press it; Down, too,
/// opens the menu.
class GlassButton final : public QPushButton {
    Q_OBJECT

public:
    enum class Kind {
        /// A translucent capsule.
        glass,
        /// A capsule filled with the accent: the one action that matters.
        prominent,
        /// A tinted, rounded bezel that fills the width it is given.
        bordered,
        /// Text alone, in the secondary colour and the caption style.
        plain,
    };
    enum class Role { normal, destructive };
    enum class ControlSize { regular, small };

    explicit GlassButton(const QString& title, Kind kind = Kind::glass, QWidget* parent = nullptr);

    [[nodiscard]] Kind kind() const { return kind_; }
    [[nodiscard]] Role role() const { return role_; }
    [[nodiscard]] ControlSize controlSize() const { return size_; }
    [[nodiscard]] const QString& title() const { return title_; }
    /// The symbol before the title; empty for none.
    [[nodiscard]] const QString& symbol() const { return symbol_; }
    void setTitle(const QString& title);
    /// Shows a symbol before the title; an empty name shows none.
    void setSymbol(const QString& name);
    /// A destructive button is red.
    void setRole(Role role);
    void setControlSize(ControlSize size);
    /// As QPushButton's, save that a press shows the menu and comes back at once.
    void setMenu(QMenu* menu);

    [[nodiscard]] QSize sizeHint() const override;
    [[nodiscard]] QSize minimumSizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    [[nodiscard]] QSizeF padding() const;
    [[nodiscard]] double symbolRoom() const;
    [[nodiscard]] double chevronRoom() const;
    /// The fill of a prominent button, which is opaque, or of a destructive one's bezel.
    [[nodiscard]] QColor bezelColor() const;
    [[nodiscard]] QColor textColor() const;
    void popUpMenu();
    void applyFont();
    void paintBezel(QPainter& painter, const QRectF& bezel, double radius) const;
    void paintFocus(QPainter& painter, const QRectF& bezel, double radius) const;

    const Kind kind_;
    Role role_ = Role::normal;
    ControlSize size_ = ControlSize::regular;
    QString title_;
    QString symbol_;
};

} // namespace tilewright
