#include "CompanionOutbox.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <algorithm>
#include <cmath>
#include <utility>

namespace tilewright {

namespace {

constexpr double mostOfAChannel = 255;

QJsonObject command(const char* name) {
    return {{QStringLiteral("c"), QLatin1String(name)}};
}

QJsonArray numbers(const CompanionRect& rect) {
    return {rect.x, rect.y, rect.width, rect.height};
}

QJsonArray numbers(const OverlayColor& color) {
    const auto channel = [](double value) {
        return std::round(std::clamp(value, 0.0, 1.0) * mostOfAChannel);
    };
    return {channel(color.red), channel(color.green), channel(color.blue),
            std::clamp(color.opacity, 0.0, 1.0)};
}

QJsonObject written(const CompanionOverlay& overlay) {
    QJsonArray tiles;
    QJsonArray lines;
    for (const CompanionTile& tile : overlay.tiles) {
        tiles.append(QJsonArray{tile.place.x, tile.place.y, tile.place.width, tile.place.height,
                                tile.cornerRadius, numbers(tile.fill), numbers(tile.border),
                                tile.borderWidth, tile.opacity});
        QJsonArray ofTile;
        for (const OverlayPictureLine& line : tile.lines)
            ofTile.append(QJsonArray{line.width, numbers(line.color)});
        lines.append(ofTile);
    }
    QJsonObject object = command("overlay");
    object[QStringLiteral("area")] = numbers(overlay.area);
    object[QStringLiteral("transition")] = static_cast<qint64>(overlay.transition.count());
    object[QStringLiteral("tiles")] = tiles;
    object[QStringLiteral("lines")] = lines;
    return object;
}

QJsonObject written(CompanionWindowID window, const CompanionRect& frame) {
    QJsonObject object = command("frame");
    object[QStringLiteral("window")] = static_cast<qint64>(window);
    object[QStringLiteral("frame")] = numbers(frame);
    return object;
}

QJsonObject written(const CompanionItem& item) {
    QJsonObject object = command("item");
    object[QStringLiteral("shown")] = true;
    object[QStringLiteral("icon")] = item.icon;
    object[QStringLiteral("name")] = item.name;
    return object;
}

QJsonObject written(const CompanionPanel& panel) {
    QJsonObject object = command("panel");
    object[QStringLiteral("title")] = panel.title;
    object[QStringLiteral("margins")] = QJsonArray{panel.margins.left(), panel.margins.top(),
                                                   panel.margins.right(), panel.margins.bottom()};
    object[QStringLiteral("shown")] = panel.isShown;
    if (panel.isShown) {
        object[QStringLiteral("corner")] = QJsonArray{panel.corner.x, panel.corner.y};
        object[QStringLiteral("area")] = numbers(panel.area);
        object[QStringLiteral("anchor")] = numbers(panel.anchor);
    }
    return object;
}

QJsonArray written(const CompanionOutbox::Frames& frames) {
    QJsonArray commands;
    for (const auto& [window, frame] : frames)
        commands.append(written(window, frame));
    return commands;
}

QString asAnswer(const QJsonArray& commands) {
    QJsonObject answer;
    if (!commands.isEmpty())
        answer[QStringLiteral("do")] = commands;
    return QString::fromUtf8(QJsonDocument(answer).toJson(QJsonDocument::Compact));
}

} // namespace

void CompanionOutbox::showOverlay(const CompanionOverlay& overlay) {
    CompanionOverlay shown = overlay;
    if (shown.tiles.size() > mostTiles)
        shown.tiles.resize(mostTiles);
    overlay_ = Overlay{std::move(shown)};
    tell();
}

void CompanionOutbox::hideOverlay() {
    overlay_ = Overlay{};
    tell();
}

void CompanionOutbox::setFrame(CompanionWindowID window, const CompanionRect& frame) {
    if (!frames_.contains(window) && frames_.size() >= mostFrames)
        return;
    frames_[window] = frame;
    tell();
}

void CompanionOutbox::showItem(const CompanionItem& item) {
    item_ = item;
    tell();
}

void CompanionOutbox::setPanel(const CompanionPanel& panel) {
    panel_ = panel;
    tell();
}

void CompanionOutbox::bringForward(const QString& title) {
    front_ = title;
    tell();
}

void CompanionOutbox::askForPointer() {
    wantsPointer_ = true;
    tell();
}

void CompanionOutbox::dropClosedPanel() {
    if (panel_ && !panel_->isShown)
        panel_.reset();
}

void CompanionOutbox::clear() {
    overlay_.reset();
    frames_.clear();
    item_.reset();
    panel_.reset();
    front_.reset();
    wantsPointer_ = false;
}

bool CompanionOutbox::isEmpty() const {
    return !overlay_ && frames_.empty() && !hasLasting();
}

bool CompanionOutbox::hasLasting() const {
    return item_ || panel_ || front_ || wantsPointer_;
}

QString CompanionOutbox::take() {
    QJsonArray commands = written(frames_);
    if (overlay_)
        commands.append(overlay_->shown ? written(*overlay_->shown) : command("overlayGone"));
    appendLasting(commands);
    clear();
    return asAnswer(commands);
}

QString CompanionOutbox::answerWith(const Frames& frames) {
    return asAnswer(written(frames));
}

QString CompanionOutbox::takeLasting() {
    QJsonArray commands;
    appendLasting(commands);
    return asAnswer(commands);
}

void CompanionOutbox::appendLasting(QJsonArray& commands) {
    if (const auto item = std::exchange(item_, std::nullopt))
        commands.append(written(*item));
    if (const auto panel = std::exchange(panel_, std::nullopt))
        commands.append(written(*panel));
    if (const auto title = std::exchange(front_, std::nullopt)) {
        QJsonObject object = command("front");
        object[QStringLiteral("title")] = *title;
        commands.append(object);
    }
    if (std::exchange(wantsPointer_, false))
        commands.append(command("pointer"));
}

} // namespace tilewright
