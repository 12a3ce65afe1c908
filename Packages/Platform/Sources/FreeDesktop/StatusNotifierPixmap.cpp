#include "StatusNotifierPixmap.h"

#include <QDBusMetaType>
#include <QPainter>
#include <QtEndian>
#include <array>

namespace tilewright {

namespace {
constexpr std::array sizes{16, 22, 24, 32, 44, 48, 64};
}

StatusNotifierPixmap StatusNotifierPixmap::fromImage(const QImage& image) {
    const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
    StatusNotifierPixmap pixmap{straight.width(), straight.height(), {}};
    pixmap.data.reserve(straight.sizeInBytes());
    for (int y = 0; y < straight.height(); ++y) {
        for (int x = 0; x < straight.width(); ++x) {
            const quint32 bigEndian = qToBigEndian(straight.pixel(x, y));
            pixmap.data.append(reinterpret_cast<const char*>(&bigEndian), sizeof bigEndian);
        }
    }
    return pixmap;
}

QImage StatusNotifierPixmap::toImage() const {
    QImage image(width, height, QImage::Format_ARGB32);
    if (data.size() != qsizetype{width} * height * 4)
        return {};
    const char* next = data.constData();
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x, next += 4)
            image.setPixel(x, y, qFromBigEndian<quint32>(next));
    }
    return image;
}

StatusNotifierPixmaps statusNotifierPixmaps(const QIcon& icon, const QColor& color) {
    StatusNotifierPixmaps pixmaps;
    for (const int size : sizes)
        pixmaps.append(StatusNotifierPixmap::fromImage(recoloured(icon, size, color)));
    return pixmaps;
}

QImage recoloured(const QIcon& icon, int size, const QColor& color) {
    QImage image(size, size, QImage::Format_ARGB32_Premultiplied);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    const QPixmap shape = icon.pixmap(QSize(size, size), 1.0);
    painter.drawPixmap((size - shape.width()) / 2, (size - shape.height()) / 2, shape);
    painter.setCompositionMode(QPainter::CompositionMode_SourceIn);
    painter.fillRect(image.rect(), color);
    return image;
}

QColor iconColorForAnyBar() {
    // Contrast 3.2 : 1 against white, 4.4 : 1 against a usual dark bar (#2b2b2b).
    return QColor(0x90, 0x90, 0x90);
}

void registerStatusNotifierTypes() {
    qDBusRegisterMetaType<StatusNotifierPixmap>();
    qDBusRegisterMetaType<StatusNotifierPixmaps>();
    qDBusRegisterMetaType<StatusNotifierToolTip>();
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument << pixmap.width << pixmap.height << pixmap.data;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap) {
    argument.beginStructure();
    argument >> pixmap.width >> pixmap.height >> pixmap.data;
    argument.endStructure();
    return argument;
}

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument << toolTip.iconName << toolTip.iconPixmaps << toolTip.title << toolTip.text;
    argument.endStructure();
    return argument;
}

const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip) {
    argument.beginStructure();
    argument >> toolTip.iconName >> toolTip.iconPixmaps >> toolTip.title >> toolTip.text;
    argument.endStructure();
    return argument;
}

} // namespace tilewright
