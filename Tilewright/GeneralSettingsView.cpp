#include "GeneralSettingsView.h"

#include <Platform/Platform.h>
#include <TilewrightUI/Hairline.h>
#include <TilewrightUI/Look.h>
#include <TilewrightUI/PopUpButton.h>
#include <TilewrightUI/TextLabel.h>

#include <QHBoxLayout>
#include <QPainter>
#include <QVBoxLayout>

namespace tilewright {

namespace {

constexpr int padding = 20;
constexpr int sectionSpacing = 16;
constexpr int groupPadding = 12;
constexpr double groupCornerRadius = 8;

/// The background of a group of rows.
class GroupBox final : public QWidget {
public:
    GroupBox()
        : column_(new QVBoxLayout(this)) {
        column_->setContentsMargins(groupPadding, 10, groupPadding, 10);
        column_->setSpacing(9);
    }
    [[nodiscard]] QVBoxLayout* column() const { return column_; }

protected:
    void paintEvent(QPaintEvent*) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(look::cardFill(palette()));
        painter.drawRoundedRect(QRectF(rect()), groupCornerRadius, groupCornerRadius);
    }

private:
    QVBoxLayout* column_;
};

TextLabel* makeCaption(const QString& text) {
    auto* label = new TextLabel(text, look::TextStyle::caption, TextLabel::Importance::secondary);
    label->setOverflow(TextLabel::Overflow::wrap);
    return label;
}

/// A heading over a group, added to the form.
GroupBox* addSection(QVBoxLayout* form, const QString& title) {
    auto* section = new QVBoxLayout;
    section->setSpacing(look::defaultSpacing);
    section->addWidget(new TextLabel(title, look::TextStyle::headline));
    auto* group = new GroupBox;
    section->addWidget(group);
    form->addLayout(section);
    return group;
}

} // namespace

GeneralSettingsView::GeneralSettingsView(QWidget* parent)
    : QWidget(parent)
    , snapSettings_(SnapSettings::shared())
    , modifierPicker_(new PopUpButton(tr("Snap modifier"), this))
    , modifierRow_(new QHBoxLayout)
    , caption_(makeCaption({}))
    , refresh_([this] { refresh(); }) {
    std::vector<PopUpButton::Item> items;
    items.reserve(SnapModifiers::allCases.size());
    for (const SnapModifier modifier : SnapModifiers::allCases)
        items.push_back({rawValue(modifier), pickerLabel(modifier)});
    modifierPicker_->setItems(items);
    connect(modifierPicker_, &QComboBox::activated, this, [this] {
        if (const auto chosen = snapModifierFromRawValue(modifierPicker_->selectedID()))
            snapSettings_.setModifier(*chosen);
    });

    auto* form = new QVBoxLayout(this);
    form->setContentsMargins(padding, padding, padding, padding);
    form->setSpacing(sectionSpacing);
    addSection(form, tr("Keep Awake"))
        ->column()
        ->addWidget(makeCaption(tr("Configure default session durations in the menu bar.")));
    QVBoxLayout* zones = addSection(form, tr("Window Zones"))->column();
    auto* title = new TextLabel(tr("Snap modifier"), look::TextStyle::body);
    title->setBuddy(modifierPicker_);
    modifierRow_->addWidget(title);
    modifierRow_->addStretch();
    modifierRow_->addWidget(modifierPicker_);
    zones->addLayout(modifierRow_);
    zones->addWidget(new Hairline);
    zones->addWidget(caption_);
    form->addStretch();

    refresh_.observe(snapSettings_);
    refresh();
}

GeneralSettingsView::~GeneralSettingsView() = default;

void GeneralSettingsView::refresh() {
    const SnapModifier modifier = snapSettings_.modifier();
    modifierPicker_->select(rawValue(modifier));
    showLocalName(modifier);
    caption_->setText(
        tr("Hold %1 (%2) and drag a window to snap it into a zone. Assign a layout per display "
           "from the menu bar, or build your own in the Layouts tab.")
            .arg(symbol(modifier), rawValue(modifier)));
}

void GeneralSettingsView::showLocalName(SnapModifier modifier) {
    const auto name = Platform::current().keyNames.localName(eventFlag(modifier));
    const QString title = modifierPicker_->accessibleName();
    modifierPicker_->setAccessibleDescription(name ? tr("%1: %2").arg(title, *name) : title);
    localName_.reset();
    if (!name)
        return;
    localName_ =
        std::make_unique<TextLabel>(*name, look::TextStyle::body, TextLabel::Importance::secondary);
    modifierRow_->insertWidget(modifierRow_->indexOf(modifierPicker_), localName_.get());
}

} // namespace tilewright
