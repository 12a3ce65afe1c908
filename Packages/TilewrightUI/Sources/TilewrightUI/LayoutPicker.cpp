#include "LayoutPicker.h"

#include "LayoutCard.h"
#include "LayoutThumbnail.h"
#include "Look.h"
#include "PopUpButton.h"
#include "TextLabel.h"

#include <Platform/Platform.h>
#include <WindowManager/DisplayIdentity.h>
#include <WindowManager/LayoutStore.h>
#include <WindowManager/WindowManager.h>

#include <QGridLayout>
#include <QHBoxLayout>
#include <QVBoxLayout>
#include <algorithm>

namespace tilewright {

namespace {

constexpr int columnSpacing = 10;
constexpr int gridSpacing = 8;
constexpr int thumbnailHeight = 90;
constexpr int displayPickerWidth = 130;

} // namespace

LayoutPicker::LayoutPicker(QWidget* parent)
    : QWidget(parent)
    , displayPicker_(new PopUpButton(tr("Display"), this))
    , thumbnail_(new LayoutThumbnail(
          ZoneLayout::bentoBox(), [this](const Zone& zone) { snapFocusedWindow(zone); }, this))
    , grid_(new QGridLayout)
    , refresh_([this] { refresh(); }) {
    displayPicker_->setMaximumWidth(displayPickerWidth);
    connect(displayPicker_, &QComboBox::activated, this,
            [this] { setSelectedDisplayKey(displayPicker_->selectedID()); });
    thumbnail_->setFixedSize(qRound(thumbnailHeight * LayoutThumbnail::aspectRatio),
                             thumbnailHeight);

    auto* header = new QHBoxLayout;
    header->setSpacing(look::defaultSpacing);
    auto* title = new TextLabel(tr("Window Zones"), look::TextStyle::headline,
                                TextLabel::Importance::primary, this);
    // Assistive tools go by the order of the children.
    title->stackUnder(displayPicker_);
    header->addWidget(title);
    header->addStretch();
    header->addWidget(displayPicker_);
    grid_->setSpacing(gridSpacing);
    for (int column = 0; column < static_cast<int>(columnCount); ++column)
        grid_->setColumnStretch(column, 1);
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(columnSpacing);
    column->addLayout(header);
    column->addWidget(thumbnail_, 0, Qt::AlignLeading);
    column->addLayout(grid_);

    refresh_.observe(LayoutStore::shared());
    connect(&Platform::current().screens, &Screens::screensChanged, this,
            &LayoutPicker::refreshDisplays);
    refreshDisplays();
}

void LayoutPicker::setSelectedDisplayKey(const QString& key) {
    selectedDisplayKey_ = key;
    refresh();
}

std::optional<LayoutPicker::DisplayInfo> LayoutPicker::selectedDisplay() const {
    if (displays_.empty())
        return std::nullopt;
    const auto found = std::find_if(displays_.begin(), displays_.end(), [this](const auto& entry) {
        return entry.id == selectedDisplayKey_;
    });
    return found == displays_.end() ? displays_.front() : *found;
}

std::vector<std::vector<ZoneLayout>> LayoutPicker::layoutRows() const {
    std::vector<std::vector<ZoneLayout>> rows;
    for (ZoneLayout& layout : LayoutStore::shared().allLayouts()) {
        if (rows.empty() || rows.back().size() == columnCount)
            rows.emplace_back();
        rows.back().push_back(std::move(layout));
    }
    return rows;
}

ZoneLayout LayoutPicker::currentLayout() const {
    const auto display = selectedDisplay();
    return display ? LayoutStore::shared().layoutFor(*display->screen) : ZoneLayout::bentoBox();
}

void LayoutPicker::refreshDisplays() {
    displays_.clear();
    for (const ScreenPtr& screen : Platform::current().screens.all()) {
        if (const auto identity = displayIdentity(*screen))
            displays_.push_back({identity->key, identity->localizedName, screen});
    }
    if (!selectedDisplayKey_) {
        const ScreenPtr underPointer = WindowManager::screenWithMouse();
        const auto identity = underPointer ? displayIdentity(*underPointer) : std::nullopt;
        if (identity)
            selectedDisplayKey_ = identity->key;
        else if (!displays_.empty())
            selectedDisplayKey_ = displays_.front().id;
    }
    refresh();
}

void LayoutPicker::refresh() {
    std::vector<PopUpButton::Item> items;
    items.reserve(displays_.size());
    for (const DisplayInfo& display : displays_)
        items.push_back({display.id, display.name});
    displayPicker_->setItems(items);
    const auto display = selectedDisplay();
    displayPicker_->select(display ? display->id : QString());
    displayPicker_->setVisible(displays_.size() >= 2);
    thumbnail_->setZoneLayout(currentLayout());
    refreshCards();
}

void LayoutPicker::refreshCards() {
    // Cards are taken over from layout to layout, so that the keyboard focus stays in its place.
    const QUuid current = currentLayout().id;
    std::size_t count = 0;
    int row = 0;
    for (const auto& layouts : layoutRows()) {
        int column = 0;
        for (const ZoneLayout& layout : layouts) {
            if (count == cards_.size()) {
                cards_.push_back(makeCard(layout));
                grid_->addWidget(cards_.back(), row, column);
            } else {
                cards_[count]->setZoneLayout(layout);
            }
            cards_[count]->setOn(layout.id == current);
            ++count;
            ++column;
        }
        ++row;
    }
    while (cards_.size() > count) {
        if (cards_.back()->hasFocus() && count > 0)
            cards_[count - 1]->setFocus(Qt::OtherFocusReason);
        delete cards_.back();
        cards_.pop_back();
    }
    for (std::size_t index = 0; index < count; ++index)
        cards_[index]->setPosition(index + 1, count);
}

LayoutCard* LayoutPicker::makeCard(const ZoneLayout& layout) {
    auto* card = new LayoutCard(layout, this);
    connect(card, &AskingToggle::toggleRequested, this,
            [this, card] { assign(card->zoneLayout()); });
    connect(card, &LayoutCard::deleteRequested, this,
            [card] { LayoutStore::shared().removeCustomLayout(card->zoneLayout().id); });
    connect(card, &LayoutCard::moveRequested, this,
            [this, card](int columns, int rows) { moveFocus(card, columns, rows); });
    return card;
}

void LayoutPicker::snapFocusedWindow(const Zone& zone) {
    const auto display = selectedDisplay();
    if (!display)
        return;
    try {
        WindowManager::shared().snapFocusedWindow(zone, display->screen);
    } catch (const WindowManagerError&) {
        // A window that cannot be placed stays where it is, without a message.
    }
}

void LayoutPicker::assign(const ZoneLayout& layout) {
    if (const auto display = selectedDisplay())
        LayoutStore::shared().assign(layout, *display->screen);
}

void LayoutPicker::moveFocus(const LayoutCard* from, int columns, int rows) {
    const auto found = std::find(cards_.begin(), cards_.end(), from);
    const auto target =
        (found - cards_.begin()) + columns + (rows * static_cast<std::ptrdiff_t>(columnCount));
    if (target >= 0 && target < std::ssize(cards_))
        cards_[static_cast<std::size_t>(target)]->setFocus(Qt::TabFocusReason);
}

} // namespace tilewright
