#pragma once

#include <MockTeller.h>
#include <Plasma/KWinCompanion.h>

#include <QDBusVirtualObject>
#include <QFile>
#include <QRegularExpression>
#include <map>

namespace tilewright::testing {

/// KWin as it is on the bus: owns its name, takes scripts, and has those that run do their errands.
class MockKWin final : public MockTeller {
public:
    explicit MockKWin(QDBusConnection bus)
        : MockTeller(std::move(bus))
        , scripting_(*this) {
        come();
    }
    ~MockKWin() { leave(); }

    void come() {
        bus_.registerVirtualObject(QStringLiteral("/Scripting"), &scripting_);
        bus_.registerVirtualObject(QStringLiteral("/Effects"), &scripting_);
        EXPECT_TRUE(bus_.registerService(KWinCompanion::compositorName()));
    }
    /// Its end, with whatever ran inside.
    void leave() {
        running.clear();
        loaded_.clear();
        bus_.unregisterService(KWinCompanion::compositorName());
        bus_.unregisterObject(QStringLiteral("/Scripting"));
        bus_.unregisterObject(QStringLiteral("/Effects"));
    }
    /// It begins anew to paint.
    void restartCompositing() {
        for (const bool isOn : {false, true}) {
            QDBusMessage toggled = QDBusMessage::createSignal(
                QStringLiteral("/Compositor"), QStringLiteral("org.kde.kwin.Compositing"),
                QStringLiteral("compositingToggled"));
            toggled << isOn;
            bus_.send(toggled);
        }
    }
    /// Whether the companion runs.
    [[nodiscard]] bool hasCompanion() const {
        return running.contains(QStringLiteral("tilewright"));
    }
    void greet(const QByteArray& hello = helloText()) { call("Hello", hello); }

    /// The text of a script that runs, by its name.
    std::map<QString, QString> running;
    int loads = 0;
    bool takesScripts = true;
    QStringList unloadedEffects;
    /// Called when the companion has begun to run.
    std::function<void()> onCompanion;

private:
    class Scripting final : public QDBusVirtualObject {
    public:
        explicit Scripting(MockKWin& kwin)
            : kwin_(kwin) {}
        QString introspect(const QString&) const override { return {}; }
        bool handleMessage(const QDBusMessage& message, const QDBusConnection& bus) override {
            const QVariantList arguments = message.arguments();
            const QString method = message.member();
            if (method == QStringLiteral("loadScript"))
                bus.send(message.createReply(
                    kwin_.load(arguments.value(0).toString(), arguments.value(1).toString())));
            else if (method == QStringLiteral("unloadScript"))
                bus.send(message.createReply(kwin_.unload(arguments.value(0).toString())));
            else if (method == QStringLiteral("unloadEffect"))
                kwin_.unloadedEffects.append(arguments.value(0).toString());
            else if (method == QStringLiteral("start"))
                kwin_.start();
            else
                return false;
            return true;
        }

    private:
        MockKWin& kwin_;
    };

    [[nodiscard]] int load(const QString& path, const QString& name) {
        QFile file(path);
        if (!takesScripts || loaded_.contains(name) || running.contains(name) ||
            !file.open(QIODevice::ReadOnly))
            return -1;
        loaded_[name] = QString::fromUtf8(file.readAll());
        return loads++;
    }
    [[nodiscard]] bool unload(const QString& name) {
        return loaded_.erase(name) + running.erase(name) > 0;
    }
    void start() {
        const auto loaded = std::exchange(loaded_, {});
        for (const auto& [name, text] : loaded)
            run(name, text);
    }
    void run(const QString& name, const QString& text) {
        static const QRegularExpression lastLine(QStringLiteral(
            R"(\nnew (Companion|Errand)\('([^']*)', (\d+), '([^']*)'\)(?:\.run\(\((.*)\)\.do \|\| \[\]\))?;\n$)"));
        const QRegularExpressionMatch match = lastLine.match(text);
        ASSERT_TRUE(match.hasMatch()) << text.right(300).toStdString();
        EXPECT_EQ(match.captured(4), name);
        program = match.captured(2);
        if (match.captured(1) == QStringLiteral("Errand")) {
            obey(match.captured(5));
            return;
        }
        running[name] = text;
        if (onCompanion)
            onCompanion();
    }

    Scripting scripting_;
    std::map<QString, QString> loaded_;
};

} // namespace tilewright::testing
