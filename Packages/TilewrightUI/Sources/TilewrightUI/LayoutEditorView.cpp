#include "LayoutEditorView.h"

#include "EditingBadge.h"
#include "EditorToast.h"
#include "GlassButton.h"
#include "LayoutEditorCanvas.h"
#include "Look.h"
#include "RoundedTextField.h"
#include "TextLabel.h"
#include "ToggleSwitch.h"
#include "WrappingRow.h"

#include <Platform/Platform.h>
#include <WindowManager/LayoutStore.h>

#include <QEvent>
#include <QMenu>
#include <QScreen>
#include <algorithm>

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

constexpr int padding = look::defaultPadding;
constexpr int rowSpacing = 12;
/// What a menu has beside the names in it, in points.
constexpr int menuEdges = 80;

} // namespace

LayoutEditorView::LayoutEditorView(QWidget* parent)
    : QWidget(parent)
    , model_(LayoutStore::shared(), Platform::current().mainLoop) {
    // In the order in which Tab is to reach them.
    makeHeader();
    canvas_ = new LayoutEditorCanvas(model_, this);
    makeControls();
    toast_ = new EditorToast(this);

    auto* refresher = new Refresh([this] { refresh(); }, this);
    refresher->observe(model_);
    refresh();
}

LayoutEditorView::~LayoutEditorView() = default;

void LayoutEditorView::makeHeader() {
    nameField_ = new RoundedTextField(tr("Layout name"), this);
    connect(nameField_, &QLineEdit::textEdited, &model_, &LayoutEditorModel::setLayoutName);
    badge_ = new EditingBadge(this);

    openButton_ = new GlassButton(tr("Open"), GlassButton::Kind::glass, this);
    openButton_->setSymbol(u"folder"_s);
    auto* menu = new QMenu(openButton_);
    menu->setAccessibleName(tr("Open"));
    connect(menu, &QMenu::aboutToShow, this, [this, menu] { fillOpenMenu(*menu); });
    openButton_->setMenu(menu);

    newButton_ = new GlassButton(tr("New"), GlassButton::Kind::glass, this);
    newButton_->setSymbol(u"doc.badge.plus"_s);
    connect(newButton_, &QAbstractButton::clicked, &model_, &LayoutEditorModel::newLayout);

    snapLabel_ = new TextLabel(tr("Snap to edges"), look::TextStyle::body,
                               TextLabel::Importance::primary, this);
    snapSwitch_ = new ToggleSwitch(tr("Snap to edges"), this);
    connect(snapSwitch_, &ToggleSwitch::toggleRequested, &model_,
            &LayoutEditorModel::setSnapToEdges);

    header_ = std::make_unique<WrappingRow>(
        std::vector<QWidget*>{nameField_, badge_, openButton_, newButton_},
        std::vector<QWidget*>{snapLabel_, snapSwitch_}, WrappingRow::Trailing::together,
        nameField_);
}

void LayoutEditorView::makeControls() {
    addButton_ = new GlassButton(tr("Add Zone"), GlassButton::Kind::glass, this);
    addButton_->setSymbol(u"plus"_s);
    connect(addButton_, &QAbstractButton::clicked, this, &LayoutEditorView::addZone);

    deleteButton_ = new GlassButton(tr("Delete"), GlassButton::Kind::glass, this);
    deleteButton_->setSymbol(u"trash"_s);
    connect(deleteButton_, &QAbstractButton::clicked, &model_, &LayoutEditorModel::deleteSelected);

    saveAsNewButton_ = new GlassButton(tr("Save as New"), GlassButton::Kind::glass, this);
    connect(saveAsNewButton_, &QAbstractButton::clicked, &model_, &LayoutEditorModel::saveAsNew);

    saveButton_ = new GlassButton(tr("Save Layout"), GlassButton::Kind::prominent, this);
    saveButton_->setSymbol(u"square.and.arrow.down"_s);
    connect(saveButton_, &QAbstractButton::clicked, &model_, &LayoutEditorModel::update);

    // A click leaves the keyboard with the zone it was with, so that the arrow keys go on moving
    // it.
    for (GlassButton* button :
         {openButton_, newButton_, addButton_, deleteButton_, saveAsNewButton_, saveButton_})
        button->setFocusPolicy(Qt::TabFocus);

    for (QWidget* control :
         std::initializer_list<QWidget*>{deleteButton_, saveAsNewButton_, saveButton_, snapSwitch_})
        control->installEventFilter(this);

    controls_ = std::make_unique<WrappingRow>(std::vector<QWidget*>{addButton_, deleteButton_},
                                              std::vector<QWidget*>{saveAsNewButton_, saveButton_});
}

void LayoutEditorView::fillOpenMenu(QMenu& menu) {
    menu.clear();
    const auto addHeading = [&menu](const QString& title) {
        menu.addAction(title)->setEnabled(false);
    };
    const auto addLayout = [&](const ZoneLayout& layout, auto&& open) {
        // No name makes the menu wider than its display.
        const QString title = QFontMetrics(menu.font())
                                  .elidedText(look::singleLine(layout.name), Qt::ElideMiddle,
                                              screen()->availableGeometry().width() - menuEdges);
        connect(menu.addAction(look::plainText(title)), &QAction::triggered, this,
                [open, layout] { open(layout); });
    };
    addHeading(tr("Start from preset"));
    for (const ZoneLayout& layout : ZoneLayout::builtIns())
        addLayout(layout, [this](const ZoneLayout& preset) { model_.loadPreset(preset); });
    menu.addSeparator();
    addHeading(tr("Edit saved layout"));
    const std::vector<ZoneLayout>& saved = LayoutStore::shared().customLayouts();
    for (const ZoneLayout& layout : saved)
        addLayout(layout, [this](const ZoneLayout& chosen) { model_.loadForEditing(chosen); });
    if (saved.empty())
        addHeading(tr("No saved layouts yet"));
}

void LayoutEditorView::addZone() {
    const std::size_t before = model_.zones().size();
    model_.addZone();
    // Whoever works by keyboard stays on the button; a click hands the arrow keys to the new zone.
    if (model_.zones().size() != before && !addButton_->hasFocus())
        canvas_->focusSelected();
}

void LayoutEditorView::refresh() {
    const bool isEditing = model_.editingLayoutID().has_value();
    if (nameField_->text() != model_.layoutName())
        nameField_->setText(model_.layoutName());
    badge_->setVisible(isEditing);
    snapSwitch_->setOn(model_.snapToEdges());
    deleteButton_->setEnabled(model_.canDelete());
    saveAsNewButton_->setVisible(isEditing);
    saveAsNewButton_->setEnabled(model_.canSave());
    const QString saveTitle = isEditing ? tr("Update Layout") : tr("Save Layout");
    if (saveButton_->title() != saveTitle)
        saveButton_->setTitle(saveTitle);
    saveButton_->setEnabled(model_.canSave());
    toast_->setToast(model_.toast());
    arrange();
    canvas_->refresh();
}

void LayoutEditorView::arrange() {
    const QRect area = rect().adjusted(padding, padding, -padding, -padding);
    const int headerHeight = header_->arrange(area);
    const int controlsHeight = controls_->heightFor(area.width());
    const int room = area.height() - headerHeight - controlsHeight - (2 * rowSpacing);
    const int width = std::max(
        0, std::min(area.width(), static_cast<int>(room * LayoutEditorCanvas::aspectRatio)));
    const int height = static_cast<int>(width / LayoutEditorCanvas::aspectRatio);
    const QRect canvas(area.left() + ((area.width() - width) / 2),
                       area.top() + headerHeight + rowSpacing, width, height);
    // The handles of small zones may stick out into the padding and the spacing.
    const int margin = LayoutEditorCanvas::margin;
    const int side = std::min(LayoutEditorCanvas::sideMargin, canvas.left());
    canvas_->setGeometry(canvas.adjusted(-side, -margin, side, margin));
    controls_->arrange(
        {area.left(), canvas.bottom() + 1 + rowSpacing, area.width(), controlsHeight});
    toast_->updatePlace();
}

bool LayoutEditorView::event(QEvent* event) {
    // What a control asks for changes with its title and with the desktop's font.
    if (event->type() == QEvent::LayoutRequest)
        arrange();
    return QWidget::event(event);
}

bool LayoutEditorView::eventFilter(QObject* watched, QEvent* event) {
    // Clicks may wait together while the program is busy, with no turn of the loop between them.
    // Each is judged by what the model says, not by what was shown before the first.
    if (event->type() == QEvent::MouseButtonPress || event->type() == QEvent::MouseButtonDblClick)
        refresh();
    return QWidget::eventFilter(watched, event);
}

void LayoutEditorView::resizeEvent(QResizeEvent*) {
    arrange();
}

QSize LayoutEditorView::sizeHint() const {
    return {520, 400};
}

QSize LayoutEditorView::minimumSizeHint() const {
    const int width = std::max(header_->minimumWidth(), controls_->minimumWidth());
    const int canvas = canvas_->minimumSizeHint().height() - (2 * LayoutEditorCanvas::margin);
    return {width + (2 * padding), header_->heightFor(width) + controls_->heightFor(width) +
                                       canvas + (2 * rowSpacing) + (2 * padding)};
}

} // namespace tilewright
