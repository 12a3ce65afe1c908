#include "RecordingIdleService.h"

#include <QDBusMessage>
#include <gtest/gtest.h>

namespace tilewright::testing {

RecordingIdleService::RecordingIdleService(const QString& busAddress)
    : name_(QStringLiteral("idle-service-%1").arg(quintptr(this)))
    , bus_(QDBusConnection::connectToBus(busAddress, name_)) {
    for (const QString& path :
         {QStringLiteral("/org/freedesktop/ScreenSaver"), QStringLiteral("/ScreenSaver")})
        bus_.registerObject(path, this, QDBusConnection::ExportAllSlots);
    EXPECT_TRUE(bus_.registerService(QStringLiteral("org.freedesktop.ScreenSaver")));
    watch_ = new QDBusServiceWatcher(this);
    watch_->setConnection(bus_);
    watch_->setWatchMode(QDBusServiceWatcher::WatchForUnregistration);
    connect(watch_, &QDBusServiceWatcher::serviceUnregistered, this, [this](const QString& peer) {
        std::erase_if(holders_, [&](const auto& holder) { return holder.second == peer; });
    });
}

RecordingIdleService::~RecordingIdleService() {
    QDBusConnection::disconnectFromBus(name_);
}

uint RecordingIdleService::Inhibit(const QString& /*application*/, const QString& /*reason*/) {
    watch_->addWatchedService(message().service());
    holders_[++lastCookie_] = message().service();
    return lastCookie_;
}

void RecordingIdleService::UnInhibit(uint cookie) {
    if (holders_.erase(cookie) > 0)
        ++releases_;
}

} // namespace tilewright::testing
