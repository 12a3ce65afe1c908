#pragma once

#include <Platform/StatusItem.h>

#include <memory>

namespace tilewright {

namespace appkit {
class StatusItem;
}

/// The item in the menu bar: a template image, which follows the bar's light or dark look by
/// itself. Main thread only.
class MacStatusItem final : public StatusItem {
    Q_OBJECT

public:
    MacStatusItem();
    ~MacStatusItem() override;

    void setSymbol(const QString& symbolName, const QIcon& icon) override;
    void setAccessibleName(const QString& name) override;
    /// Shows the item as pressed, as while its panel is open. A click that is being handled ends
    /// with an item that is not: what is to last has to come later.
    void setHighlighted(bool isHighlighted);

private:
    std::unique_ptr<appkit::StatusItem> item_;
};

} // namespace tilewright
