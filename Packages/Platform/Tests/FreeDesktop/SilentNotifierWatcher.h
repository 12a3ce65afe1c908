#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVariant>
#include <QDBusVirtualObject>
#include <gtest/gtest.h>
#include <vector>

namespace tilewright::testing {

/// Holds the place of the status area's watcher and answers nothing by itself.
class SilentNotifierWatcher final : public QDBusVirtualObject {
public:
    explicit SilentNotifierWatcher(QDBusConnection bus)
        : bus_(std::move(bus)) {
        bus_.registerVirtualObject(QStringLiteral("/StatusNotifierWatcher"), this);
        EXPECT_TRUE(bus_.registerService(name()));
    }
    ~SilentNotifierWatcher() override {
        bus_.unregisterService(name());
        bus_.unregisterObject(QStringLiteral("/StatusNotifierWatcher"));
    }
    SilentNotifierWatcher(const SilentNotifierWatcher&) = delete;
    SilentNotifierWatcher& operator=(const SilentNotifierWatcher&) = delete;

    QString introspect(const QString& /*path*/) const override { return {}; }
    bool handleMessage(const QDBusMessage& message, const QDBusConnection& /*bus*/) override {
        if (message.member() == QStringLiteral("Get"))
            asked.push_back(message);
        return true;
    }
    /// Answers the last question for its host.
    void answer(const QVariant& value) {
        bus_.send(asked.back().createReply(QVariant::fromValue(QDBusVariant(value))));
    }

    /// The questions for its host.
    std::vector<QDBusMessage> asked;

private:
    static QString name() { return QStringLiteral("org.kde.StatusNotifierWatcher"); }

    QDBusConnection bus_;
};

} // namespace tilewright::testing
