#pragma once

#include <Platform/Screens.h>
#include <Platform/StatusItem.h>

#include <memory>

namespace tilewright {

namespace appkit {
class StatusItem;
}

/// The item in the menu bar: a template image, which follows the bar's light or dark look by
/// itself. Main thread only; the screens have to outlive it.
class MacStatusItem final : public StatusItem {
    Q_OBJECT

public:
    explicit MacStatusItem(const Screens& screens);
    ~MacStatusItem() override;

    void setSymbol(const QString& symbolName, const QIcon& icon) override;
    void setAccessibleName(const QString& name) override;

private:
    /// Where the item is, in the toolkit's coordinates; null where that is not known.
    [[nodiscard]] QRect place() const;

    const Screens& screens_;
    std::unique_ptr<appkit::StatusItem> item_;
};

} // namespace tilewright
