#include "FakeProgram.h"

#include <QDBusConnectionInterface>
#include <QJsonDocument>
#include <QUuid>
#include <algorithm>
#include <gtest/gtest.h>
#include <utility>

namespace tilewright::testing {

namespace {

QString answerText(const QJsonArray& commands) {
    const QJsonObject answer{{QStringLiteral("do"), commands}};
    return QString::fromUtf8(QJsonDocument(answer).toJson(QJsonDocument::Compact));
}

} // namespace

FakeProgram::FakeProgram(const QString& busAddress)
    : name_(QUuid::createUuid().toString())
    , bus_(QDBusConnection::connectToBus(busAddress, name_)) {
    EXPECT_TRUE(bus_.registerObject(QStringLiteral("/org/tilewright/Companion"), this,
                                    QDBusConnection::ExportAllSlots));
    EXPECT_TRUE(bus_.registerService(QStringLiteral("org.tilewright.Companion")));
}

FakeProgram::~FakeProgram() {
    QDBusConnection::disconnectFromBus(name_);
}

int FakeProgram::count(const QString& method) const {
    return int(std::count_if(calls_.begin(), calls_.end(),
                             [&](const CompanionCall& call) { return call.method == method; }));
}

QJsonObject FakeProgram::last(const QString& method) const {
    const auto found = std::find_if(calls_.rbegin(), calls_.rend(), [&](const CompanionCall& call) {
        return call.method == method;
    });
    return found == calls_.rend() ? QJsonObject() : found->body;
}

bool FakeProgram::waitFor(const QString& method, int beyond, std::chrono::milliseconds deadline) {
    return waitUntil([&] { return count(method) > beyond; }, deadline);
}

void FakeProgram::command(const QJsonObject& command) {
    answerRaw(answerText({command}));
}

void FakeProgram::answerRaw(const QString& text) {
    ASSERT_TRUE(waitUntil([&] { return isListenedTo(); })) << "the companion does not listen";
    EXPECT_TRUE(bus_.send(poll_->createReply(text)));
    poll_.reset();
}

void FakeProgram::goOn() {
    isHung = false;
    for (const auto& [call, what] : std::exchange(held_, {}))
        EXPECT_TRUE(bus_.send(call.createReply(answerText(answer ? answer(what) : QJsonArray()))));
}

QString FakeProgram::NextCommand(const QString&) {
    ++polls_;
    if (!flood.isEmpty())
        return answerText(flood);
    setDelayedReply(true);
    poll_ = message();
    return {};
}

QString FakeProgram::take(const QString& method, const QString& text) {
    calls_.push_back({method, QJsonDocument::fromJson(text.toUtf8()).object()});
    if (isHung) {
        setDelayedReply(true);
        held_.emplace_back(message(), calls_.back());
        return {};
    }
    if (protocol && method == QStringLiteral("Hello"))
        return QStringLiteral("{\"protocol\":%1}").arg(*protocol);
    return answerText(answer ? answer(calls_.back()) : QJsonArray());
}

} // namespace tilewright::testing
