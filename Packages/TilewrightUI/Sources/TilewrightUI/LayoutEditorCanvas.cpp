#include "LayoutEditorCanvas.h"

#include "Look.h"
#include "ZoneEditorTileAccessible.h"

#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <algorithm>

namespace tilewright {

namespace {

constexpr double cornerRadius = 6;

} // namespace

LayoutEditorCanvas::LayoutEditorCanvas(LayoutEditorModel& model, QWidget* parent)
    : QWidget(parent)
    , model_(model) {
    installZoneEditorAccessibility();
    setObjectName(QStringLiteral("editorCanvas"));
    setMouseTracking(true);
    setAccessibleName(tr("Canvas"));
    for (const auto corner : ZoneEditorGeometry::allCorners) {
        auto* handle = new ZoneEditorHandle(model_, corner, this);
        connect(handle, &ZoneEditorHandle::cancelRequested, this, &LayoutEditorCanvas::cancelDrag);
        handles_.at(static_cast<std::size_t>(corner)) = handle;
    }
    refresh();
}

LayoutEditorCanvas::~LayoutEditorCanvas() = default;

QRectF LayoutEditorCanvas::canvasFrame() const {
    const QRectF room = QRectF(rect()).adjusted(margin, margin, -margin, -margin);
    const double width = std::max(0.0, std::min(room.width(), room.height() * aspectRatio));
    const double height = width / aspectRatio;
    return {room.center().x() - (width / 2), room.center().y() - (height / 2), width, height};
}

QSize LayoutEditorCanvas::sizeHint() const {
    return {480 + (2 * margin), 300 + (2 * margin)};
}

QSize LayoutEditorCanvas::minimumSizeHint() const {
    return {160 + (2 * margin), 100 + (2 * margin)};
}

void LayoutEditorCanvas::refresh() {
    updateTiles();
    updateHandles();
    updateCursor();
}

void LayoutEditorCanvas::updateTiles() {
    const std::size_t count = model_.zones().size();
    while (tiles_.size() < count) {
        auto* tile = new ZoneEditorTile(model_, tiles_.size(), this);
        connect(tile, &ZoneEditorTile::cancelRequested, this, &LayoutEditorCanvas::cancelDrag);
        if (!tiles_.empty())
            setTabOrder(tiles_.back(), tile);
        tiles_.push_back(tile);
        // New tiles come in front of everything, the handles are to stay there.
        for (ZoneEditorHandle* handle : handles_)
            handle->raise();
        handlesFollow_.reset();
    }
    for (std::size_t index = count; index < tiles_.size(); ++index) {
        // Qt would pass the focus of a hidden widget on to wherever Tab leads.
        if (tiles_[index]->hasFocus() && count > 0)
            tiles_[count - 1]->setFocus();
        tiles_[index]->hide();
    }
    const QRectF canvas = canvasFrame();
    for (std::size_t index = 0; index < count; ++index)
        tiles_[index]->refresh(canvas);
}

void LayoutEditorCanvas::updateHandles() {
    const std::optional<std::size_t> selected = model_.selectedIndex();
    if (!selected) {
        for (ZoneEditorHandle* handle : handles_) {
            if (handle->hasFocus() && handlesFollow_)
                tiles_[std::min(*handlesFollow_, tiles_.size() - 1)]->setFocus();
            handle->hide();
        }
        return;
    }
    const QRectF& zone = tiles_[*selected]->zoneFrame();
    for (ZoneEditorHandle* handle : handles_)
        handle->attach(*selected, zone, rect());
    if (selected == handlesFollow_)
        return;
    // Tab leads from a zone to its handles, then to the next zone.
    QWidget* previous = tiles_[*selected];
    for (ZoneEditorHandle* handle : handles_) {
        setTabOrder(previous, handle);
        previous = handle;
    }
    handlesFollow_ = selected;
}

std::optional<std::size_t> LayoutEditorCanvas::topmostAt(QPointF point) const {
    for (std::size_t index = model_.zones().size(); index-- > 0;) {
        const QRectF& frame = tiles_[index]->zoneFrame();
        if (!frame.isEmpty() && frame.contains(point))
            return index;
    }
    return std::nullopt;
}

std::optional<LayoutEditorCanvas::Target> LayoutEditorCanvas::targetAt(QPointF point) const {
    // The handle drawn last is the topmost.
    if (const auto selected = model_.selectedIndex()) {
        for (auto handle = handles_.rbegin(); handle != handles_.rend(); ++handle) {
            if ((*handle)->contains(point))
                return Target{*selected, (*handle)->corner()};
        }
    }
    if (const auto topmost = topmostAt(point))
        return Target{*topmost, std::nullopt};
    return std::nullopt;
}

void LayoutEditorCanvas::mousePressEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    // The model may have changed since the last refresh, and presses are judged by what it says.
    refresh();
    pressedAt_ = pointer_ = event->position();
    const auto target = targetAt(pressedAt_);
    if (!target)
        return;
    drag_.emplace(model_, target->index, target->corner);
    if (!target->corner)
        tiles_[target->index]->setFocus(Qt::MouseFocusReason);
    updateCursor();
}

void LayoutEditorCanvas::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void LayoutEditorCanvas::mouseMoveEvent(QMouseEvent* event) {
    pointer_ = event->position();
    // The release went elsewhere, such as to the desktop that was switched to by a key.
    if ((event->buttons() & Qt::LeftButton) == 0)
        drag_.reset();
    if (drag_)
        drag_->changed(pointer_ - pressedAt_, canvasFrame().size());
    updateCursor();
}

void LayoutEditorCanvas::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton || !drag_)
        return;
    pointer_ = event->position();
    drag_->changed(pointer_ - pressedAt_, canvasFrame().size());
    const ZoneEditorDrag ended = *drag_;
    drag_.reset();
    if (!ended.hasBegun() && !ended.corner() && ended.index() < model_.zones().size())
        tiles_[ended.index()]->onSelect();
    updateCursor();
}

void LayoutEditorCanvas::cancelDrag() {
    if (drag_)
        drag_->cancel();
    drag_.reset();
    updateCursor();
}

void LayoutEditorCanvas::focusSelected() {
    refresh();
    if (const auto selected = model_.selectedIndex())
        tiles_[*selected]->setFocus(Qt::OtherFocusReason);
}

void LayoutEditorCanvas::updateCursor() {
    Qt::CursorShape shape = Qt::ArrowCursor;
    if (drag_) {
        shape = drag_->corner() ? ZoneEditorHandle::cursorShape(*drag_->corner())
                                : Qt::ClosedHandCursor;
    } else if (const auto target = targetAt(pointer_)) {
        shape =
            target->corner ? ZoneEditorHandle::cursorShape(*target->corner) : Qt::OpenHandCursor;
    }
    if (shape != cursor().shape())
        setCursor(shape);
}

void LayoutEditorCanvas::resizeEvent(QResizeEvent*) {
    refresh();
}

void LayoutEditorCanvas::hideEvent(QHideEvent*) {
    // The release will go elsewhere.
    drag_.reset();
}

void LayoutEditorCanvas::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(look::quaternary(palette()));
    painter.drawRoundedRect(canvasFrame(), cornerRadius, cornerRadius);
}

} // namespace tilewright
