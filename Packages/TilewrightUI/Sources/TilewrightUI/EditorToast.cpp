#include "EditorToast.h"

#include "Look.h"
#include "Symbols.h"
#include "ZoneEditorTileAccessible.h"

#include <QAccessible>
#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tilewright {

using namespace Qt::StringLiterals;

namespace {

constexpr double topDistance = 8;
constexpr double sidePadding = 14;
constexpr double verticalPadding = 8;
constexpr double symbolGap = 6;
constexpr double shadowOffset = 2;
constexpr double shadowRadius = 6;
/// Room around the capsule for its shadow.
constexpr double shadowMargin = shadowRadius + shadowOffset;
constexpr double shadowOpacity = 0.33;
/// Least distance from the sides of the editor.
constexpr double sideDistance = 12;

double symbolSide(const QFontMetricsF& text) {
    return std::round(text.ascent() * 1.1);
}

/// The deep red of the light appearance in the dark one too: the text on it is white in both.
QColor errorRed() {
    return look::red(QPalette(QColor(Qt::white)));
}

/// A soft shadow: layers whose darkness adds up to the wanted one under the shape and fades
/// outside.
void paintShadow(QPainter& painter, const QRectF& shape) {
    constexpr int layers = 6;
    const double each = 1 - std::pow(1 - shadowOpacity, 1.0 / layers);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgbF(0, 0, 0, static_cast<float>(each)));
    for (int layer = 0; layer < layers; ++layer) {
        const double grow = shadowRadius * ((2.0 * layer / (layers - 1)) - 1) * 0.8;
        const QRectF around = shape.translated(0, shadowOffset).adjusted(-grow, -grow, grow, grow);
        const double radius = around.height() / 2;
        painter.drawRoundedRect(around, radius, radius);
    }
}

} // namespace

EditorToast::EditorToast(QWidget* parent)
    : QWidget(parent)
    , presence_(Spring{0.3}, 0, [this](double) { updatePlace(); }) {
    installZoneEditorAccessibility();
    setAttribute(Qt::WA_TransparentForMouseEvents);
    hide();
}

void EditorToast::setToast(const std::optional<LayoutEditorModel::Toast>& toast) {
    if (toast == toast_)
        return;
    toast_ = toast;
    if (toast) {
        shown_ = *toast;
        setAccessibleName(toast->message);
    }
    const bool replaces = toast && isVisible();
    presence_.animateTo(toast ? 1 : 0);
    updatePlace();
    if (toast)
        announce(replaces);
}

void EditorToast::announce(bool replacesAnother) {
    QAccessibleEvent alert(this, QAccessible::Alert);
    QAccessible::updateAccessibility(&alert);
    // The accessibility bus knows no such event. Screen readers read an alert when it is shown, of
    // which Qt tells by itself only when nothing was shown before.
    if (replacesAnother) {
        QAccessibleEvent shown(this, QAccessible::ObjectShow);
        QAccessible::updateAccessibility(&shown);
    }
}

void EditorToast::updatePlace() {
    const double presence = std::clamp(presence_.value(), 0.0, 1.0);
    const bool isGone = !toast_ && !presence_.isRunning();
    setVisible(!isGone);
    if (isGone)
        return;
    const QFontMetricsF text(look::mediumFont(look::TextStyle::callout));
    const double around = (2 * sidePadding) + symbolSide(text) + symbolGap;
    const double textRoom = parentWidget()->width() - (2 * sideDistance) - around;
    // The ends of a message tell more than its middle, which may be a long name.
    shownText_ = text.elidedText(shown_.message, Qt::ElideMiddle, std::max(textRoom, 0.0));
    const double width = std::ceil(text.horizontalAdvance(shownText_)) + around;
    const double height = std::max(text.height(), symbolSide(text)) + (2 * verticalPadding);
    const double y = topDistance - ((1 - presence) * (height + topDistance));
    const QRectF place((parentWidget()->width() - width) / 2, y, width, height);
    const double room = shadowMargin;
    setGeometry(place.adjusted(-room, -room, room, room).toAlignedRect());
    raise();
    update();
}

QRectF EditorToast::capsule() const {
    return QRectF(rect()).adjusted(shadowMargin, shadowMargin, -shadowMargin, -shadowMargin);
}

void EditorToast::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setOpacity(std::clamp(presence_.value(), 0.0, 1.0));
    const QRectF shape = capsule();
    paintShadow(painter, shape);
    painter.setBrush(shown_.isError ? look::withOpacity(errorRed(), 0.9) : look::tilewrightAmber());
    painter.drawRoundedRect(shape, shape.height() / 2, shape.height() / 2);

    const QFont font = look::mediumFont(look::TextStyle::callout);
    painter.setFont(font);
    painter.setPen(Qt::white);
    symbols::paintLabel(painter, shape.adjusted(sidePadding, 0, -sidePadding, 0), layoutDirection(),
                        shown_.isError ? u"exclamationmark.triangle.fill"_s
                                       : u"checkmark.circle.fill"_s,
                        symbolSide(QFontMetricsF(font)), symbolGap, shownText_);
}

} // namespace tilewright
