#pragma once

#include "CompanionOutbox.h"
#include "CompanionScreens.h"

#include <FreeDesktop/FreeDesktopStatusItem.h>
#include <Platform/StatusItem.h>

#include <QIcon>
#include <optional>

namespace tilewright {

/// The item in the desktop's bar, made by a companion; while none is there, a status-notifier item
/// for whoever shows such ones. Main thread only.
class CompanionStatusItem final : public StatusItem {
    Q_OBJECT

public:
    /// How long a companion may be away, at login or while it is replaced, before another item
    /// takes its item's place.
    static constexpr std::chrono::seconds patience{10};

    /// All of them have to outlive this.
    CompanionStatusItem(CompanionState& state, const CompanionScreens& screens,
                        CompanionOutbox& outbox, MainLoop& loop, MessageBus& bus);
    ~CompanionStatusItem() override;

    void setSymbol(const QString& symbolName, const QIcon& icon) override;
    void setAccessibleName(const QString& name) override;

    /// The name by which a companion knows its drawing of a symbol.
    [[nodiscard]] static QString companionsIcon(const QString& symbolName);

private:
    void companionChanged();
    void show();
    void makeSubstitute();

    CompanionState& state_;
    const CompanionScreens& screens_;
    CompanionOutbox& outbox_;
    MainLoop& loop_;
    MessageBus& bus_;
    QString symbolName_;
    QIcon icon_;
    QString name_;
    std::optional<FreeDesktopStatusItem> substitute_;
    ScopedTimer absence_;
};

} // namespace tilewright
