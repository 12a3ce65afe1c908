#include "KeepAwakeDesktop.h"

#include <csignal>
#include <cstdlib>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <xcb/screensaver.h>

using namespace Qt::StringLiterals;

namespace tilewright::testing {

KeepAwakeHost::KeepAwakeHost(const QProcessEnvironment& environment, const QStringList& arguments) {
    process_.setProcessEnvironment(environment);
    process_.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process_.start(QStringLiteral(TILEWRIGHT_KEEP_AWAKE_HOST), arguments);
    EXPECT_EQ(readLine(), u"ready"_s) << "the host did not come up";
}

KeepAwakeHost::~KeepAwakeHost() {
    process_.kill();
    process_.waitForFinished();
}

void KeepAwakeHost::kill() {
    process_.kill();
    EXPECT_TRUE(process_.waitForFinished());
}

bool KeepAwakeHost::tell(const QByteArray& line) {
    process_.write(line + '\n');
    const QStringList answer = readLine().split(u' ');
    EXPECT_EQ(answer.size(), 2) << line.constData() << " was not answered";
    lastDuration_ = std::chrono::microseconds(answer.value(1).toLongLong());
    return answer[0] == u"active"_s;
}

QString KeepAwakeHost::readLine() {
    if (!waitUntil([&] { return process_.canReadLine(); }))
        return {};
    return QString::fromUtf8(process_.readLine()).trimmed();
}

KeepAwakeDesktop::KeepAwakeDesktop() = default;

QProcessEnvironment KeepAwakeDesktop::environment() const {
    QProcessEnvironment environment = session_.environment();
    environment.insert(u"DBUS_SYSTEM_BUS_ADDRESS"_s, session_.busAddress());
    return environment;
}

std::optional<QString> KeepAwakeDesktop::ask(const QString& service, const QString& path,
                                             const QString& method) {
    // dbus-send starts services: only those that are there are asked.
    if (service != u"org.freedesktop.DBus"_s && !isOnBus(service))
        return std::nullopt;
    const QString answer =
        outputOf(u"dbus-send"_s,
                 {u"--session"_s, u"--print-reply=literal"_s, u"--dest="_s + service, path, method},
                 environment());
    return answer.isEmpty() ? std::nullopt : std::optional(answer.simplified());
}

bool KeepAwakeDesktop::isOnBus(const QString& service) {
    const QString answer =
        outputOf(u"dbus-send"_s,
                 {u"--session"_s, u"--print-reply=literal"_s, u"--dest=org.freedesktop.DBus"_s,
                  u"/"_s, u"org.freedesktop.DBus.NameHasOwner"_s, u"string:"_s + service},
                 environment());
    return answer.contains(u"boolean true"_s);
}

Subprocess& KeepAwakeDesktop::startService(const QString& name, const QStringList& arguments) {
    Subprocess& process = session_.start(
        u"/usr/bin/python3"_s,
        QStringList{QStringLiteral(TILEWRIGHT_IDLE_SERVICE), u"--name"_s, name} + arguments);
    EXPECT_TRUE(waitUntil([&] { return isOnBus(name); })) << name.toStdString();
    return process;
}

int KeepAwakeDesktop::held(const QString& service) {
    return number(service, u"Held"_s);
}

int KeepAwakeDesktop::asked(const QString& service) {
    return number(service, u"Asked"_s);
}

int KeepAwakeDesktop::granted(const QString& service) {
    return number(service, u"Granted"_s);
}

int KeepAwakeDesktop::number(const QString& service, const QString& method) {
    const auto answer = ask(service, u"/test"_s, u"test.IdleService."_s + method);
    return answer ? answer->section(u' ', -1).toInt() : -1;
}

void KeepAwakeDesktop::blankAfterOneSecond() {
    (void)outputOf(u"xset"_s, {u"s"_s, u"blank"_s}, environment());
    (void)outputOf(u"xset"_s, {u"s"_s, u"1"_s}, environment());
}

bool KeepAwakeDesktop::isBlanked() {
    const XInspector& inspector = session_.inspector();
    auto* info = xcb_screensaver_query_info_reply(
        inspector.connection(),
        xcb_screensaver_query_info(inspector.connection(), inspector.root()), nullptr);
    const bool isOn = info && info->state == XCB_SCREENSAVER_STATE_ON;
    std::free(info);
    return isOn;
}

} // namespace tilewright::testing
