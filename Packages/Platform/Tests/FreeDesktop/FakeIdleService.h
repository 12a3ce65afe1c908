#pragma once

#include <FreeDesktop/IdleService.h>

#include <QCoreApplication>
#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QMutex>
#include <QThread>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <vector>

namespace tilewright::testing {

/// Stands in for an idle-inhibit service under any name and at every known path. It answers on a
/// thread of its own, so that it does while the test's event loop stands still.
class FakeIdleService {
public:
    /// Answers a call of `Inhibit`, or keeps it for later.
    using Answer = std::function<void(const QDBusMessage& call, QDBusConnection& bus)>;

    [[nodiscard]] static Answer granting(const QVariant& grant) {
        return [grant](const QDBusMessage& call, QDBusConnection& bus) {
            bus.send(call.createReply(grant));
        };
    }
    [[nodiscard]] static Answer failing(const QString& error) {
        return [error](const QDBusMessage& call, QDBusConnection& bus) {
            bus.send(call.createErrorReply(error, QStringLiteral("no")));
        };
    }
    [[nodiscard]] static Answer silent() {
        return [](const QDBusMessage&, QDBusConnection&) {};
    }

    FakeIdleService(const QDBusConnection& bus, Answer answer)
        : bus_(bus)
        , object_(std::make_unique<Object>(*this))
        , answer_(std::move(answer)) {
        object_->moveToThread(&thread_);
        thread_.start();
        for (const IdleService& service : idleServices()) {
            for (const QString& path : service.paths)
                bus_.registerVirtualObject(path, object_.get(), QDBusConnection::SingleNode);
        }
    }
    ~FakeIdleService() {
        for (const QString& name : names_)
            bus_.unregisterService(name);
        bus_.unregisterObject(QStringLiteral("/"), QDBusConnection::UnregisterTree);
        thread_.quit();
        thread_.wait();
    }
    FakeIdleService(const FakeIdleService&) = delete;
    FakeIdleService& operator=(const FakeIdleService&) = delete;

    /// Takes the name, or the place of its owner's successor.
    void queueFor(const QString& name) {
        QDBusMessage request = QDBusMessage::createMethodCall(
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("/org/freedesktop/DBus"),
            QStringLiteral("org.freedesktop.DBus"), QStringLiteral("RequestName"));
        request << name << quint32{0};
        EXPECT_EQ(bus_.call(request).type(), QDBusMessage::ReplyMessage);
        names_.append(name);
    }
    void giveUp(const QString& name) {
        names_.removeAll(name);
        EXPECT_TRUE(bus_.unregisterService(name));
    }
    [[nodiscard]] QDBusConnection& bus() { return bus_; }

    /// The calls of `Inhibit` so far.
    [[nodiscard]] std::vector<QDBusMessage> asked() const {
        const QMutexLocker lock(&mutex_);
        return asked_;
    }
    /// All other calls so far.
    [[nodiscard]] std::vector<QDBusMessage> released() const {
        const QMutexLocker lock(&mutex_);
        return released_;
    }
    void setAnswer(Answer answer) {
        const QMutexLocker lock(&mutex_);
        answer_ = std::move(answer);
    }

private:
    class Object final : public QDBusVirtualObject {
    public:
        explicit Object(FakeIdleService& service)
            : service_(service) {}
        QString introspect(const QString&) const override { return {}; }
        bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
            return service_.handle(message, bus);
        }

    private:
        FakeIdleService& service_;
    };

    bool handle(const QDBusMessage& message, QDBusConnection bus) {
        Answer answer;
        {
            const QMutexLocker lock(&mutex_);
            if (message.member() == QStringLiteral("Inhibit")) {
                asked_.push_back(message);
                answer = answer_;
            } else {
                released_.push_back(message);
            }
        }
        if (answer)
            answer(message, bus);
        else
            bus.send(message.createReply());
        return true;
    }

    QDBusConnection bus_;
    QStringList names_;
    QThread thread_;
    std::unique_ptr<Object> object_;
    mutable QMutex mutex_;
    Answer answer_;
    std::vector<QDBusMessage> asked_;
    std::vector<QDBusMessage> released_;
};

} // namespace tilewright::testing
