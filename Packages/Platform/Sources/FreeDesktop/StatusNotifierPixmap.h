#pragma once

#include <QByteArray>
#include <QColor>
#include <QDBusArgument>
#include <QIcon>
#include <QImage>
#include <QList>
#include <QString>

namespace tilewright {

/// A picture as it goes over the bus in the StatusNotifierItem protocol: ARGB, 8 bits each, in
/// network byte order, not premultiplied.
struct StatusNotifierPixmap {
    int width = 0;
    int height = 0;
    QByteArray data;

    [[nodiscard]] static StatusNotifierPixmap fromImage(const QImage& image);
    [[nodiscard]] QImage toImage() const;

    friend bool operator==(const StatusNotifierPixmap&, const StatusNotifierPixmap&) = default;
};

using StatusNotifierPixmaps = QList<StatusNotifierPixmap>;

/// A tool tip in the StatusNotifierItem protocol.
struct StatusNotifierToolTip {
    QString iconName;
    StatusNotifierPixmaps iconPixmaps;
    QString title;
    QString text;
};

/// The icon in every size that hosts commonly show, recoloured.
[[nodiscard]] StatusNotifierPixmaps statusNotifierPixmaps(const QIcon& icon, const QColor& color);
/// The shape of the icon in one colour.
[[nodiscard]] QImage recoloured(const QIcon& icon, int size, const QColor& color);
/// A tone that stands out against a light bar as well as against a dark one.
[[nodiscard]] QColor iconColorForAnyBar();
/// Makes the types above known to the bus; may be called again.
void registerStatusNotifierTypes();

QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierPixmap& pixmap);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierPixmap& pixmap);
QDBusArgument& operator<<(QDBusArgument& argument, const StatusNotifierToolTip& toolTip);
const QDBusArgument& operator>>(const QDBusArgument& argument, StatusNotifierToolTip& toolTip);

} // namespace tilewright

Q_DECLARE_METATYPE(tilewright::StatusNotifierPixmap)
Q_DECLARE_METATYPE(tilewright::StatusNotifierToolTip)
