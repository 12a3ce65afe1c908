#pragma once

#include <WindowManager/ZoneLayout.h>

#include <QWidget>
#include <functional>
#include <optional>

class QAbstractButton;

namespace tilewright {

/// The large drawing of a layout, in which each zone can be chosen by pointer and keyboard.
///
/// It keeps a width-to-height ratio of 1.6 and lies at the top leading corner of the space it is
/// given. Zones are drawn where they are on the screen, in right-to-left desktops too.
class LayoutThumbnail final : public QWidget {
    Q_OBJECT

public:
    /// Width to height.
    static constexpr double aspectRatio = 1.6;
    /// Receives the zone that was chosen.
    using SelectZone = std::function<void(const Zone&)>;

    explicit LayoutThumbnail(ZoneLayout layout, SelectZone onSelectZone = {},
                             QWidget* parent = nullptr);

    /// Shows another layout from now on.
    void setZoneLayout(const ZoneLayout& layout);
    [[nodiscard]] const ZoneLayout& zoneLayout() const { return layout_; }
    /// The area drawn upon, in the widget's own coordinates.
    [[nodiscard]] QRectF canvas() const;
    /// The buttons that stand for the zones, in the order of the layout.
    [[nodiscard]] const std::vector<QAbstractButton*>& zoneButtons() const { return buttons_; }

    [[nodiscard]] QSize sizeHint() const override { return {144, 90}; }
    [[nodiscard]] bool hasHeightForWidth() const override { return true; }
    [[nodiscard]] int heightForWidth(int width) const override;

protected:
    void paintEvent(QPaintEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;

private:
    [[nodiscard]] QRectF frame(const Zone& zone) const;
    void makeButtons();
    void placeButtons();

    ZoneLayout layout_;
    SelectZone onSelectZone_;
    std::vector<QAbstractButton*> buttons_;
};

} // namespace tilewright
