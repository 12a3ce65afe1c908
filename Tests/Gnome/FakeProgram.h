#pragma once

#include <QDBusConnection>
#include <QDBusContext>
#include <QDBusMessage>
#include <QJsonArray>
#include <QJsonObject>
#include <QObject>
#include <Waiting.h>
#include <functional>
#include <optional>
#include <vector>

namespace tilewright::testing {

/// What the companion has called.
struct CompanionCall {
    QString method;
    QJsonObject body;
};

/// The program's end of the bus, in the test's own process: notes what the companion tells, and
/// answers what the test wants. Gone from the bus when it ends.
class FakeProgram final : public QObject, protected QDBusContext {
    Q_OBJECT
    Q_CLASSINFO("D-Bus Interface", "org.tilewright.Companion1")

public:
    /// Takes its name on that bus.
    explicit FakeProgram(const QString& busAddress);
    ~FakeProgram() override;

    /// The commands that a call is answered with.
    std::function<QJsonArray(const CompanionCall&)> answer;
    /// While set, no call is answered, as by a program that is stopped; what comes is noted.
    bool isHung = false;
    /// While set, greetings are answered with this protocol instead.
    std::optional<int> protocol;
    /// While set, the long poll is answered at once with these commands, again and again, as by a
    /// program that floods.
    QJsonArray flood;
    /// How often the long poll has come so far.
    [[nodiscard]] int polls() const { return polls_; }
    /// Answers all that came meanwhile, as one that goes on.
    void goOn();

    /// What has come so far, the long poll left out.
    [[nodiscard]] const std::vector<CompanionCall>& calls() const { return calls_; }
    [[nodiscard]] int count(const QString& method) const;
    /// The newest call of a method; an empty body where there was none.
    [[nodiscard]] QJsonObject last(const QString& method) const;
    /// Waits for a call of a method beyond so many.
    [[nodiscard]] bool waitFor(const QString& method, int beyond = 0,
                               std::chrono::milliseconds deadline = patience);
    void forgetCalls() { calls_.clear(); }

    /// Has the companion do something, by the long poll; waits until one stands.
    void command(const QJsonObject& command);
    /// Answers the long poll with any text at all.
    void answerRaw(const QString& text);
    [[nodiscard]] bool isListenedTo() const { return poll_.has_value(); }

public Q_SLOTS:
    QString Hello(const QString& body) { return take(QStringLiteral("Hello"), body); }
    QString Displays(const QString& body) { return take(QStringLiteral("Displays"), body); }
    QString Focus(const QString& body) { return take(QStringLiteral("Focus"), body); }
    QString MotionWish(const QString& body) { return take(QStringLiteral("MotionWish"), body); }
    QString DragBegin(const QString& body) { return take(QStringLiteral("DragBegin"), body); }
    QString DragMotion(const QString& body) { return take(QStringLiteral("DragMotion"), body); }
    QString DragEnd(const QString& body) { return take(QStringLiteral("DragEnd"), body); }
    QString FrameSettled(const QString& body) { return take(QStringLiteral("FrameSettled"), body); }
    QString ItemClicked(const QString& body) { return take(QStringLiteral("ItemClicked"), body); }
    QString PanelAwaited(const QString& body) { return take(QStringLiteral("PanelAwaited"), body); }
    QString PressOutside(const QString& body) { return take(QStringLiteral("PressOutside"), body); }
    QString Pointer(const QString& body) { return take(QStringLiteral("Pointer"), body); }
    QString Gone(const QString& body) { return take(QStringLiteral("Gone"), body); }
    QString NextCommand(const QString& body);

private:
    QString take(const QString& method, const QString& text);

    const QString name_;
    QDBusConnection bus_;
    std::vector<CompanionCall> calls_;
    std::optional<QDBusMessage> poll_;
    int polls_ = 0;
    /// What has not been answered.
    std::vector<std::pair<QDBusMessage, CompanionCall>> held_;
};

} // namespace tilewright::testing
