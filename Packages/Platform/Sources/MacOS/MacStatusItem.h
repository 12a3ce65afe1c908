#pragma once

#include <Platform/StatusItem.h>

#include <memory>

namespace tilewright {

/// The item in the menu bar: a template image, which follows the bar's light or dark look by
/// itself. Main thread only.
class MacStatusItem final : public StatusItem {
    Q_OBJECT

public:
    MacStatusItem();
    ~MacStatusItem() override;

    void setSymbol(const QString& symbolName, const QIcon& icon) override;
    void setAccessibleName(const QString& name) override;

private:
    struct Item;
    std::unique_ptr<Item> item_;
};

} // namespace tilewright
