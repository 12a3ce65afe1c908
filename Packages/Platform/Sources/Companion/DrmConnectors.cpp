#include "DrmConnectors.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>

namespace tilewright {

namespace {

/// Larger ones exist on paper only.
constexpr qint64 longestEdid = 32 * 1024;

/// A connector's name as the kernel has it: its kind, and which of its kind.
struct KernelName {
    QString kind;
    int number = 0;
};

std::optional<KernelName> parsed(const QString& name) {
    static const QRegularExpression form(QStringLiteral("^([A-Za-z][A-Za-z-]*)-([0-9]{1,4})$"));
    const QRegularExpressionMatch match = form.match(name);
    if (!match.hasMatch())
        return std::nullopt;
    return KernelName{match.captured(1), match.captured(2).toInt()};
}

/// Some compositors shorten one kind's name as the X server does.
QStringList kernelNames(const QString& compositorsName) {
    QStringList names{compositorsName};
    if (const auto name = parsed(compositorsName); name && name->kind == u"HDMI")
        names.append(QStringLiteral("HDMI-A-%1").arg(name->number));
    return names;
}

/// The two for AMD's cards have words of their own, and count from 0; a laptop's own display has no
/// number. The older one knows fewer kinds.
QString amdNameFor(const KernelName& name, bool isOlder) {
    if ((name.kind == u"eDP" || name.kind == u"LVDS") && name.number == 1)
        return name.kind;
    QString kind = name.kind;
    if (kind == u"DP")
        kind = QStringLiteral("DisplayPort");
    else if (isOlder && (kind.startsWith(u"HDMI-") || kind.startsWith(u"DVI-")))
        kind = kind.section(u'-', 0, 0);
    return QStringLiteral("%1-%2").arg(kind).arg(name.number - 1);
}

/// The X server's own driver, and those for most cards, count as the kernel does and shorten one
/// name.
QString x11NameFor(const QString& kernelsName, const QString& driver) {
    const auto name = parsed(kernelsName);
    if (!name)
        return kernelsName;
    if (driver == u"amdgpu" || driver == u"radeon")
        return amdNameFor(*name, driver == u"radeon");
    const QString kind = name->kind == u"HDMI-A" ? QStringLiteral("HDMI") : name->kind;
    return QStringLiteral("%1-%2").arg(kind).arg(name->number);
}

QString driverOf(const QString& connectorFolder) {
    // A connector's device is its card, whose device is what the driver is bound to.
    return QFileInfo(QFileInfo(connectorFolder + QStringLiteral("/device/device/driver"))
                         .canonicalFilePath())
        .fileName();
}

QByteArray bytesOf(const QString& path) {
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.read(longestEdid) : QByteArray();
}

} // namespace

QString DrmConnectors::systemFolder() {
    return QStringLiteral("/sys/class/drm");
}

DrmConnectors::DrmConnectors(QString folder)
    : folder_(std::move(folder)) {}

DrmConnectors::Connector DrmConnectors::connector(const QString& compositorsName) const {
    static const QRegularExpression card(QStringLiteral("^card[0-9]+-"));
    const QDir folder(folder_);
    const QStringList names = kernelNames(compositorsName);
    for (const QString& entry :
         folder.entryList({QStringLiteral("card*-*")}, QDir::Dirs | QDir::NoDotAndDotDot)) {
        const QString kernelsName = QString(entry).remove(card);
        const QString path = folder.filePath(entry);
        if (!names.contains(kernelsName) ||
            bytesOf(path + QStringLiteral("/status")).trimmed() != "connected")
            continue;
        return {x11NameFor(kernelsName, driverOf(path)),
                Edid::parse(bytesOf(path + QStringLiteral("/edid")))};
    }
    return {x11NameFor(compositorsName, {}), std::nullopt};
}

} // namespace tilewright
