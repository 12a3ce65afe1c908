#include "CompanionStatusItem.h"

namespace tilewright {

CompanionStatusItem::CompanionStatusItem(CompanionState& state, const CompanionScreens& screens,
                                         CompanionOutbox& outbox, MainLoop& loop, MessageBus& bus)
    : state_(state)
    , screens_(screens)
    , outbox_(outbox)
    , loop_(loop)
    , bus_(bus) {
    connect(&state_, &CompanionState::connectedChanged, this,
            &CompanionStatusItem::companionChanged);
    connect(&state_, &CompanionState::greeted, this, &CompanionStatusItem::show);
    connect(&state_, &CompanionState::itemClicked, this, [this](const CompanionRect& item) {
        Q_EMIT activated(screens_.coordinates().toAppKit(item));
    });
    companionChanged();
}

CompanionStatusItem::~CompanionStatusItem() = default;

QString CompanionStatusItem::companionsIcon(const QString& symbolName) {
    return symbolName.endsWith(QStringLiteral(".fill"))
               ? QStringLiteral("tilewright-awake-symbolic")
               : QStringLiteral("tilewright-symbolic");
}

void CompanionStatusItem::setSymbol(const QString& symbolName, const QIcon& icon) {
    symbolName_ = symbolName;
    icon_ = icon;
    if (substitute_)
        substitute_->setSymbol(symbolName, icon);
    show();
}

void CompanionStatusItem::setAccessibleName(const QString& name) {
    name_ = name;
    if (substitute_)
        substitute_->setAccessibleName(name);
    show();
}

void CompanionStatusItem::companionChanged() {
    if (!state_.isConnected()) {
        absence_ = ScopedTimer(loop_.scheduleOnce(patience, [this] { makeSubstitute(); }));
        return;
    }
    absence_.reset();
    substitute_.reset();
}

void CompanionStatusItem::show() {
    if (state_.isConnected() && !symbolName_.isEmpty())
        outbox_.showItem({companionsIcon(symbolName_), name_});
}

void CompanionStatusItem::makeSubstitute() {
    const auto place = [this](NativePixel pixel) {
        return screens_.coordinates().toAppKit(
            CompanionPoint{static_cast<double>(pixel.x), static_cast<double>(pixel.y)});
    };
    substitute_.emplace(screens_, place, loop_, bus_);
    connect(&*substitute_, &StatusItem::activated, this, &StatusItem::activated);
    if (!symbolName_.isEmpty())
        substitute_->setSymbol(symbolName_, icon_);
    substitute_->setAccessibleName(name_);
}

} // namespace tilewright
