#pragma once

#include <WindowManager/ZoneLayout.h>

#include <QWidget>
#include <optional>

namespace tilewright {

/// The small drawing of a layout's zones. It fills the space it is given and takes no input.
class MiniLayoutPreview final : public QWidget {
    Q_OBJECT

public:
    explicit MiniLayoutPreview(ZoneLayout layout, QWidget* parent = nullptr);

    /// Shows another layout from now on.
    void setZoneLayout(const ZoneLayout& layout);
    [[nodiscard]] const ZoneLayout& zoneLayout() const { return layout_; }
    /// Draws the zone with that id highlighted.
    void setHighlightedZoneID(const std::optional<QUuid>& id);
    [[nodiscard]] const std::optional<QUuid>& highlightedZoneID() const {
        return highlightedZoneID_;
    }

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    ZoneLayout layout_;
    std::optional<QUuid> highlightedZoneID_;
};

} // namespace tilewright
