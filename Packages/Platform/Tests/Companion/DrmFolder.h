#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tilewright::testing {

/// The block of a monitor with both serials, the "Tall 27".
inline const QByteArray withBothSerials =
    QByteArray::fromHex("00ffffffffffff005197f140040302010c1f0104b53c22783aee95a3544c9926"
                        "0f505400000001010101010101010101010101010101023a801871382d40582c"
                        "450055502100001e000000ff0041423132433344340a20202020000000fc0054"
                        "616c6c2032370a202020202000000010000000000000000000000000000000e6");
/// The block of a monitor with neither, the "Wide 34".
inline const QByteArray withoutSerial =
    QByteArray::fromHex("00ffffffffffff004653070b00000000281d0104b53c22783aee95a3544c9926"
                        "0f505400000001010101010101010101010101010101023a801871382d40582c"
                        "450055502100001e000000fc00576964652033340a2020202020000000100000"
                        "0000000000000000000000000000001000000000000000000000000000000097");

/// What the kernel tells of the plugs of a machine that is made up.
class DrmFolder {
public:
    void add(const char* connector, const QByteArray& edid, const char* driver = nullptr,
             const char* status = "connected\n") const {
        const QString folder = path() + u'/' + QString::fromLatin1(connector);
        EXPECT_TRUE(QDir().mkpath(folder));
        write(folder + QStringLiteral("/edid"), edid);
        write(folder + QStringLiteral("/status"), status);
        if (!driver)
            return;
        const QString card = path_.filePath(QStringLiteral("pci"));
        const QString drivers =
            path_.filePath(QStringLiteral("drivers/%1").arg(QString::fromLatin1(driver)));
        EXPECT_TRUE(QDir().mkpath(card) && QDir().mkpath(drivers));
        EXPECT_TRUE(QDir().mkpath(folder + QStringLiteral("/device")));
        QFile::link(drivers, card + QStringLiteral("/driver"));
        QFile::link(card, folder + QStringLiteral("/device/device"));
    }
    [[nodiscard]] QString path() const { return path_.filePath(QStringLiteral("drm")); }

private:
    static void write(const QString& path, const QByteArray& bytes) {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size());
    }

    QTemporaryDir path_;
};

} // namespace tilewright::testing
