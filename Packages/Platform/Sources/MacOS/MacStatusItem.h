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

private:
    std::unique_ptr<appkit::StatusItem> item_;
};

} // namespace tilewright
