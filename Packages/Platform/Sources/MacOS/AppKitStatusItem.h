#pragma once

#include <Platform/Geometry.h>

#include <QByteArray>
#include <QString>
#include <functional>
#include <memory>
#include <optional>

namespace tilewright::appkit {

/// An item in the menu bar, of the bar's own size; gone when it ends.
class StatusItem {
public:
    StatusItem() = default;
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    virtual ~StatusItem() = default;

    /// Shows a picture (PNG) that many points wide and high, as a template: the menu bar colours
    /// what is not transparent in it.
    virtual void setTemplateImage(const QByteArray& png, int side) = 0;
    /// What assistive tools and the tool tip call the item.
    virtual void setAccessibleName(const QString& name) = 0;
    /// Shows the item as pressed, or no longer.
    virtual void setHighlighted(bool isHighlighted) = 0;
    /// Where the item's button is, in AppKit screen space; none while it is in no menu bar.
    [[nodiscard]] virtual std::optional<AppKitRect> frame() const = 0;
};

/// A new item in the menu bar. Calls back on the main thread when it is clicked.
[[nodiscard]] std::unique_ptr<StatusItem> addStatusItem(std::function<void()> clicked);

} // namespace tilewright::appkit
