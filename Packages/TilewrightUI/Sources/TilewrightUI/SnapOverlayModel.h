#pragma once

#include <Platform/ObservableObject.h>
#include <WindowManager/ZoneLayout.h>

#include <QUuid>
#include <optional>

namespace tilewright {

/// What the snap overlay shows. Main thread only.
class SnapOverlayModel final : public ObservableObject {
    Q_OBJECT

public:
    SnapOverlayModel(ZoneLayout layout, std::optional<QUuid> highlightedZoneID);
    ~SnapOverlayModel() override;

    /// Published: the layout whose zones are drawn.
    [[nodiscard]] const ZoneLayout& layout() const { return layout_.value(); }
    /// Published: the id of the zone drawn highlighted; none where none is.
    [[nodiscard]] const std::optional<QUuid>& highlightedZoneID() const {
        return highlightedZoneID_.value();
    }

    /// Every assignment is announced, also one of the present value.
    void setLayout(const ZoneLayout& layout) { layout_ = layout; }
    void setHighlightedZoneID(const std::optional<QUuid>& id) { highlightedZoneID_ = id; }

private:
    Published<ZoneLayout> layout_;
    Published<std::optional<QUuid>> highlightedZoneID_;
};

} // namespace tilewright
