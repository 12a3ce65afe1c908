#include "Symbols.h"

#include <QFile>
#include <QIconEngine>
#include <QPainter>
#include <QSvgRenderer>
#include <algorithm>
#include <cmath>
#include <list>
#include <tuple>

// The linker drops the resources of a static library that nothing names. The macro has to stand
// outside every namespace.
static void initializeSymbolResources() {
    Q_INIT_RESOURCE(symbols);
}

namespace tilewright::symbols {

namespace {

/// A file of the program's own.
QString resource(const QString& name) {
    static const bool isReady = [] {
        initializeSymbolResources();
        return true;
    }();
    Q_UNUSED(isReady)
    return QStringLiteral(":/tilewright/%1.svg").arg(name);
}

QString path(const QString& name) {
    return resource(QStringLiteral("symbols/%1").arg(name));
}

/// Symbols of two tones hold their parts under these ids.
const QString& backgroundID() {
    static const QString id = QStringLiteral("background");
    return id;
}
const QString& markID() {
    static const QString id = QStringLiteral("mark");
    return id;
}

QImage blank(QSize size) {
    QImage image(size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    return image;
}

/// One part of a drawing, in one colour, filling the image. The whole drawing without an id.
QImage part(QSvgRenderer& renderer, QSize size, const QString& id, const QColor& color) {
    QImage image = blank(size);
    QPainter painter(&image);
    if (id.isEmpty()) {
        renderer.render(&painter);
    } else {
        const QRectF box = renderer.viewBoxF();
        const QRectF bounds = renderer.boundsOnElement(id);
        const double x = size.width() / box.width();
        const double y = size.height() / box.height();
        renderer.render(
            &painter, id,
            QRectF(bounds.x() * x, bounds.y() * y, bounds.width() * x, bounds.height() * y));
    }
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QImage render(const QString& name, QSize size, const QColor& color, const QColor& second) {
    if (size.isEmpty() || !exists(name))
        return {};
    QSvgRenderer renderer(path(name));
    renderer.setAspectRatioMode(Qt::KeepAspectRatio);
    if (!renderer.elementExists(markID()))
        return part(renderer, size, {}, color);
    const bool isCutOut = second.alpha() == 0;
    QImage image = part(renderer, size, backgroundID(), isCutOut ? color : second);
    QPainter painter(&image);
    if (isCutOut)
        painter.setCompositionMode(QPainter::CompositionMode_DestinationOut);
    painter.drawImage(0, 0, part(renderer, size, markID(), isCutOut ? Qt::black : color));
    return image;
}

/// A rendered drawing, from the last used ones where it is among them: reading an SVG takes longer
/// than all else of painting a view.
QImage draw(const QString& name, QSize size, const QColor& color, const QColor& second) {
    using Key = std::tuple<QString, int, int, QRgb, QRgb>;
    constexpr std::size_t capacity = 64;
    static std::list<std::pair<Key, QImage>> recent;
    const Key key(name, size.width(), size.height(), color.rgba(), second.rgba());
    const auto found = std::find_if(recent.begin(), recent.end(),
                                    [&](const auto& entry) { return entry.first == key; });
    if (found != recent.end()) {
        recent.splice(recent.begin(), recent, found);
    } else {
        recent.emplace_front(key, render(name, size, color, second));
        if (recent.size() > capacity)
            recent.pop_back();
    }
    return recent.front().second;
}

class SymbolIconEngine final : public QIconEngine {
public:
    SymbolIconEngine(QString name, const QColor& color)
        : name_(std::move(name))
        , color_(color) {}

    void paint(QPainter* painter, const QRect& rect, QIcon::Mode mode, QIcon::State) override {
        QColor color = color_;
        if (mode == QIcon::Disabled)
            color.setAlphaF(color.alphaF() * 0.4F);
        symbols::paint(*painter, rect, name_, color);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QPixmap result(size);
        result.fill(Qt::transparent);
        QPainter painter(&result);
        paint(&painter, result.rect(), mode, state);
        return result;
    }
    [[nodiscard]] QIconEngine* clone() const override {
        return new SymbolIconEngine(name_, color_);
    }
    QString key() const override { return QStringLiteral("TilewrightSymbol"); }

private:
    QString name_;
    QColor color_;
};

/// Draws the icon whenever it is asked for: an icon of ready pictures would leave each of them in
/// Qt's cache, anew for each window.
class ApplicationIconEngine final : public QIconEngine {
public:
    void paint(QPainter* painter, const QRect& rect, QIcon::Mode, QIcon::State) override {
        QSvgRenderer renderer(resource(QStringLiteral("icon")));
        renderer.setAspectRatioMode(Qt::KeepAspectRatio);
        renderer.render(painter, rect);
    }
    QPixmap pixmap(const QSize& size, QIcon::Mode mode, QIcon::State state) override {
        QImage image = blank(size);
        QPainter painter(&image);
        paint(&painter, image.rect(), mode, state);
        painter.end();
        return QPixmap::fromImage(std::move(image));
    }
    QList<QSize> availableSizes(QIcon::Mode, QIcon::State) override {
        return {{16, 16}, {24, 24}, {32, 32}, {48, 48}, {64, 64}, {128, 128}};
    }
    [[nodiscard]] QIconEngine* clone() const override { return new ApplicationIconEngine(*this); }
};

} // namespace

bool exists(const QString& name) {
    return !name.isEmpty() && QFile::exists(path(name));
}

void paint(QPainter& painter, const QRectF& rect, const QString& name, const QColor& color,
           const QColor& second) {
    const double side = std::min(rect.width(), rect.height());
    if (side <= 0)
        return;
    const QTransform& transform = painter.deviceTransform();
    const double scale = std::max(std::hypot(transform.m11(), transform.m12()), 0.01);
    const int pixels = std::max(1, qRound(side * scale));
    QImage image = draw(name, QSize(pixels, pixels), color, second);
    if (image.isNull())
        return;
    QPointF corner(rect.center().x() - (side / 2), rect.center().y() - (side / 2));
    if (transform.type() <= QTransform::TxScale) {
        // On whole pixels, or the drawing would be smeared over its neighbours.
        const QPointF device = transform.map(corner);
        corner = transform.inverted().map(QPointF(std::round(device.x()), std::round(device.y())));
    }
    painter.drawImage(QRectF(corner, QSizeF(pixels / scale, pixels / scale)), image);
}

void paintLabel(QPainter& painter, const QRectF& rect, Qt::LayoutDirection direction,
                const QString& name, double side, double gap, const QString& text) {
    QRectF symbol(rect.left(), rect.center().y() - (side / 2), side, side);
    // A little wider than measured, so that no glyph is cut by rounding.
    QRectF words = rect.adjusted(name.isEmpty() ? 0 : side + gap, 0, 1, 0);
    if (direction == Qt::RightToLeft) {
        symbol.moveRight(rect.right());
        words.moveLeft(rect.left());
    }
    paint(painter, symbol, name, painter.pen().color());
    painter.drawText(words, Qt::AlignLeading | Qt::AlignVCenter | Qt::TextSingleLine, text);
}

QPixmap pixmap(const QString& name, double size, const QColor& color, double devicePixelRatio,
               const QColor& second) {
    const int pixels = qRound(size * devicePixelRatio);
    QPixmap result = QPixmap::fromImage(draw(name, QSize(pixels, pixels), color, second));
    result.setDevicePixelRatio(devicePixelRatio);
    return result;
}

QIcon icon(const QString& name, const QColor& color) {
    return QIcon(new SymbolIconEngine(name, color));
}

QIcon applicationIcon() {
    return QIcon(new ApplicationIconEngine);
}

} // namespace tilewright::symbols
