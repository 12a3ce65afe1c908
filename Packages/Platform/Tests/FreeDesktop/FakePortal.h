#pragma once

#include <QDBusConnection>
#include <QDBusMetaType>
#include <QDBusVariant>
#include <QMap>
#include <QObject>
#include <QStringList>
#include <QVariantMap>
#include <gtest/gtest.h>

namespace tilewright::testing {

using SettingGroups = QMap<QString, QVariantMap>;

/// Stands in for the desktop portal's settings.
class FakePortal final : public QObject {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.freedesktop.portal.Settings")

public:
    explicit FakePortal(QDBusConnection bus)
        : bus_(std::move(bus)) {
        qDBusRegisterMetaType<SettingGroups>();
        bus_.registerObject(QStringLiteral("/org/freedesktop/portal/desktop"), this,
                            QDBusConnection::ExportAllContents);
    }
    /// Until then it is anybody.
    void appear() {
        EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.portal.Desktop")));
    }
    void set(const char* group, const char* key, const QVariant& value) {
        groups_[QString::fromLatin1(group)][QString::fromLatin1(key)] = value;
    }
    void change(const char* group, const char* key, const QVariant& value) {
        set(group, key, value);
        Q_EMIT SettingChanged(QString::fromLatin1(group), QString::fromLatin1(key),
                              QDBusVariant(value));
    }
    int reads = 0;

public Q_SLOTS:
    tilewright::testing::SettingGroups ReadAll(const QStringList& names) {
        ++reads;
        SettingGroups answer;
        for (const QString& name : names) {
            if (groups_.contains(name))
                answer[name] = groups_[name];
        }
        return answer;
    }

Q_SIGNALS:
    void SettingChanged(const QString& group, const QString& key, const QDBusVariant& value);

private:
    QDBusConnection bus_;
    SettingGroups groups_;
};

} // namespace tilewright::testing
