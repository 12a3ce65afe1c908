#pragma once

#include <WindowManager/ZoneLayout.h>

#include <QWidget>

namespace tilewright {

class GlassButton;
class MiniLayoutPreview;
class NameAndCount;

/// A layout in the manager's grid: its preview, name and number of zones, and where it may be
/// deleted, a button for that.
class LayoutManagerCard final : public QWidget {
    Q_OBJECT

public:
    enum class Deletable { no, yes };

    LayoutManagerCard(const ZoneLayout& layout, Deletable deletable, QWidget* parent = nullptr);

    /// Shows another layout from now on.
    void setZoneLayout(const ZoneLayout& layout);
    [[nodiscard]] const ZoneLayout& zoneLayout() const { return layout_; }
    /// Tells assistive tools that the card is the `number`th, from 1, of `count`.
    void setPosition(std::size_t number, std::size_t count);
    [[nodiscard]] QString countText() const;
    /// Null where the layout may not be deleted.
    [[nodiscard]] GlassButton* deleteButton() const { return deleteButton_; }

Q_SIGNALS:
    /// The user asked to delete the layout.
    void deleteRequested();

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ZoneLayout layout_;
    MiniLayoutPreview* preview_;
    NameAndCount* texts_;
    GlassButton* deleteButton_ = nullptr;
};

} // namespace tilewright
