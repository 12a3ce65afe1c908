#include "LayoutManagerView.h"

#include "AdaptiveGridLayout.h"
#include "ConfirmationDialog.h"
#include "GlassButton.h"
#include "LayoutManagerCard.h"
#include "Look.h"
#include "SlimScrollBar.h"
#include "TextLabel.h"

#include <WindowManager/LayoutStore.h>

#include <QVBoxLayout>

namespace tilewright {

namespace {

constexpr int sectionSpacing = 18;
constexpr int itemSpacing = 8;
constexpr int minimumColumnWidth = 150;
constexpr int columnSpacing = 12;

/// A section's column with its title, to which the caller adds the rest. It is in its place at
/// once, so that what is added becomes a child of the content in that order.
QVBoxLayout* addSection(QVBoxLayout& column, TextLabel* title) {
    auto* section = new QVBoxLayout;
    section->setSpacing(itemSpacing);
    column.addLayout(section);
    section->addWidget(title);
    return section;
}

TextLabel* makeSubtitle(const QString& text) {
    auto* label = new TextLabel(text, look::TextStyle::caption, TextLabel::Importance::secondary);
    label->setOverflow(TextLabel::Overflow::wrap);
    return label;
}

} // namespace

LayoutManagerView::LayoutManagerView(QWidget* parent)
    : QScrollArea(parent)
    , refresh_([this] { refresh(); }) {
    setFrameShape(QFrame::NoFrame);
    setWidgetResizable(true);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    // The bar keeps its room, so that cards do not move when the first row too many appears.
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBar(new SlimScrollBar);
    setFocusPolicy(Qt::NoFocus);

    auto* content = new QWidget;
    auto* column = new QVBoxLayout(content);
    column->setContentsMargins(look::defaultPadding, look::defaultPadding,
                               look::defaultPadding - SlimScrollBar::thickness,
                               look::defaultPadding);
    column->setSpacing(sectionSpacing);

    QVBoxLayout* custom =
        addSection(*column, new TextLabel(tr("Your Layouts"), look::TextStyle::headline));
    hint_ = makeSubtitle(tr("Create layouts in the Layouts tab."));
    custom->addWidget(hint_);
    customGrid_ = new AdaptiveGridLayout(minimumColumnWidth, columnSpacing);
    custom->addLayout(customGrid_);

    builtInTitle_ = new TextLabel(tr("Built-in Layouts"), look::TextStyle::headline);
    QVBoxLayout* builtIn = addSection(*column, builtInTitle_);
    builtIn->addWidget(makeSubtitle(tr("Presets that ship with Tilewright.")));
    auto* builtInGrid = new AdaptiveGridLayout(minimumColumnWidth, columnSpacing);
    for (const ZoneLayout& layout : ZoneLayout::builtIns()) {
        builtInCards_.push_back(
            new LayoutManagerCard(layout, LayoutManagerCard::Deletable::no, content));
        builtInCards_.back()->setPosition(builtInCards_.size(), ZoneLayout::builtIns().size());
        builtInGrid->addWidget(builtInCards_.back());
    }
    builtIn->addLayout(builtInGrid);
    column->addStretch();
    setWidget(content);
    // The window's own background shows through.
    content->setAutoFillBackground(false);
    viewport()->setAutoFillBackground(false);

    refresh_.observe(LayoutStore::shared());
    refresh();
}

LayoutManagerView::~LayoutManagerView() = default;

void LayoutManagerView::refresh() {
    const auto& layouts = LayoutStore::shared().customLayouts();
    for (std::size_t i = 0; i < layouts.size(); ++i) {
        if (i < customCards_.size()) {
            customCards_[i]->setZoneLayout(layouts[i]);
            continue;
        }
        auto* card = new LayoutManagerCard(layouts[i], LayoutManagerCard::Deletable::yes, widget());
        connect(card, &LayoutManagerCard::deleteRequested, this,
                [this, card] { setPendingDelete(card->zoneLayout()); });
        customGrid_->addWidget(card);
        // Assistive tools go by the order of the children.
        card->stackUnder(builtInTitle_);
        card->setVisible(true);
        customCards_.push_back(card);
    }
    while (customCards_.size() > layouts.size()) {
        // A dialog may be in front, so the focus is the window's, not yet the application's.
        if (QWidget* focused = window()->focusWidget();
            focused && customCards_.back()->isAncestorOf(focused) && !layouts.empty())
            customCards_[layouts.size() - 1]->deleteButton()->setFocus(Qt::OtherFocusReason);
        delete customCards_.back();
        customCards_.pop_back();
    }
    for (std::size_t i = 0; i < layouts.size(); ++i)
        customCards_[i]->setPosition(i + 1, layouts.size());
    hint_->setVisible(layouts.empty());
}

void LayoutManagerView::setPendingDelete(const std::optional<ZoneLayout>& layout) {
    pendingDelete_ = layout;
    if (confirmation_) {
        ConfirmationDialog* ended = confirmation_;
        confirmation_ = nullptr;
        ended->disconnect(this);
        ended->close();
    }
    if (pendingDelete_)
        showConfirmation();
}

void LayoutManagerView::showConfirmation() {
    confirmation_ = new ConfirmationDialog(
        tr("Delete “%1”?").arg(look::singleLine(pendingDelete_->name)),
        tr("This removes the layout and clears it from any displays using it."), tr("Delete"),
        this);
    confirmation_->setAttribute(Qt::WA_DeleteOnClose);
    connect(confirmation_, &QDialog::finished, this, [this](int result) {
        if (result == QDialog::Accepted && pendingDelete_)
            LayoutStore::shared().removeCustomLayout(pendingDelete_->id);
        setPendingDelete(std::nullopt);
    });
    confirmation_->open();
}

} // namespace tilewright
