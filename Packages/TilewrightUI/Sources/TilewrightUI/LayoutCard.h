#pragma once

#include "AskingToggle.h"

#include <WindowManager/ZoneLayout.h>

#include <QLayout>

class QMenu;

namespace tilewright {

class MiniLayoutPreview;
class SymbolView;
class TextLabel;

/// A layout in the picker's grid: its preview and name, marked where it is the current one. It is
/// on while its layout is current; using it asks for that (`toggleRequested`), whatever it shows.
class LayoutCard final : public AskingToggle {
    Q_OBJECT

public:
    explicit LayoutCard(const ZoneLayout& layout, QWidget* parent = nullptr);

    /// Shows another layout from now on.
    void setZoneLayout(const ZoneLayout& layout);
    [[nodiscard]] const ZoneLayout& zoneLayout() const { return layout_; }
    /// Tells assistive tools that the card is the `number`th, from 1, of `count`.
    void setPosition(std::size_t number, std::size_t count);

    /// A context menu for this layout, owned by the card; null where there is nothing to offer.
    [[nodiscard]] QMenu* makeContextMenu();

    [[nodiscard]] QSize sizeHint() const override { return layout()->totalSizeHint(); }
    [[nodiscard]] QSize minimumSizeHint() const override { return layout()->totalMinimumSize(); }

Q_SIGNALS:
    /// The user asked to delete the layout.
    void deleteRequested();
    /// The user pressed an arrow key: the card that many columns and rows away should have the
    /// focus.
    void moveRequested(int columns, int rows);

protected:
    bool event(QEvent* event) override;
    void contextMenuEvent(QContextMenuEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void paintEvent(QPaintEvent* event) override;

private:
    void placeBadge();

    ZoneLayout layout_;
    MiniLayoutPreview* preview_;
    TextLabel* name_;
    SymbolView* badge_;
};

} // namespace tilewright
