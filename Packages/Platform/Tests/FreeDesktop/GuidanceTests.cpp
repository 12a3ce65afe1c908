#include <FreeDesktop/FreeDesktopGuidance.h>
#include <Waiting.h>

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tilewright::testing {
namespace {

class RecordedNotifications final : public UserNotifications {
public:
    void show(const QString& title, const QString& text) override {
        shown.append(title + u'|' + text);
    }
    QStringList shown;
};

/// A desktop whose programs are scripts that write down how they were called.
class Guidance : public ::testing::Test {
protected:
    Guidance() {
        QDir(folder.path()).mkpath(QStringLiteral("bin"));
        QDir(folder.path()).mkpath(QStringLiteral("help"));
        environment.insert(QStringLiteral("PATH"), path("bin"));
        write(path("help/page.html"), "<html/>");
    }

    [[nodiscard]] QString path(const char* name) const {
        return folder.filePath(QString::fromLatin1(name));
    }
    static void write(const QString& path, const QByteArray& contents) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
    }
    /// Installs a program that notes its call and goes on with `rest`, a shell script.
    void install(const char* program, const QByteArray& rest = "exit 0") const {
        const QString file = path("bin/") + QString::fromLatin1(program);
        write(file, "#!/bin/sh\necho " + QByteArray(program) + " \"$@\" >> '" +
                        path("calls").toUtf8() + "'\n" + rest + "\n");
        QFile::setPermissions(file, QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    }
    [[nodiscard]] QStringList calls() const {
        QFile file(path("calls"));
        if (!file.open(QIODevice::ReadOnly))
            return {};
        return QString::fromUtf8(file.readAll()).split(u'\n', Qt::SkipEmptyParts);
    }
    [[nodiscard]] QString page() const { return path("help/page.html"); }
    [[nodiscard]] FreeDesktopGuidance guidance() {
        return FreeDesktopGuidance(notifications, environment,
                                   {path("no such folder"), path("help")});
    }
    void expectCalls(const QStringList& expected) const {
        EXPECT_TRUE(waitUntil([&] { return calls().size() >= expected.size(); }));
        EXPECT_EQ(calls(), expected) << calls().join(u'\n').toStdString();
    }
    /// Something that comes after whatever the desktop's programs may still cause: a topic that
    /// nothing opens.
    void expectNoNotification(FreeDesktopGuidance& guide) {
        guide.show({FreeDesktopGuidance::Setting::none, QString(), QStringLiteral("last"), {}});
        EXPECT_TRUE(waitUntil([&] { return !notifications.shown.isEmpty(); }));
        EXPECT_EQ(notifications.shown, QStringList(QStringLiteral("last|")));
    }

    QTemporaryDir folder;
    QProcessEnvironment environment;
    RecordedNotifications notifications;
    const FreeDesktopGuidance::Topic topic{FreeDesktopGuidance::Setting::windowManager,
                                           QStringLiteral("page.html"), QStringLiteral("Title"),
                                           QStringLiteral("Text")};
};

} // namespace

TEST_F(Guidance, OpensTheInstalledPageByTheDesktopsHandler) {
    install("xdg-open");
    install("gio");
    FreeDesktopGuidance guide = guidance();
    guide.show(topic);
    expectCalls({QStringLiteral("xdg-open ") + page()});
    expectNoNotification(guide);
}

TEST_F(Guidance, PrefersTheDesktopsOwnSettingsWhereTheyHaveAPageThatHelps) {
    for (const auto& [desktop, program] :
         {std::pair("LXQt", "lxqt-config-session"), std::pair("LXDE", "lxsession-default-apps")}) {
        QFile::remove(path("calls"));
        install(program);
        install("xdg-open");
        environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"),
                           QStringLiteral("Other:") + QLatin1String(desktop));
        FreeDesktopGuidance guide = guidance();
        guide.show(topic);
        expectCalls({QString::fromLatin1(program)});
    }
}

TEST_F(Guidance, OpensThePageWhereThoseSettingsDoNotHelpOrAreNotInstalled) {
    environment.insert(QStringLiteral("XDG_CURRENT_DESKTOP"), QStringLiteral("LXQt"));
    install("xdg-open");
    FreeDesktopGuidance guide = guidance();
    guide.show(topic);
    expectCalls({QStringLiteral("xdg-open ") + page()});
    install("lxqt-config-session");
    guide.show({FreeDesktopGuidance::Setting::none, topic.page, topic.title, topic.text});
    expectCalls({QStringLiteral("xdg-open ") + page(), QStringLiteral("xdg-open ") + page()});
}

TEST_F(Guidance, TriesAnotherHandlerWhereOneFails) {
    install("xdg-open", "exit 3");
    install("gio", "kill -9 $$");
    install("exo-open");
    FreeDesktopGuidance guide = guidance();
    guide.show(topic);
    expectCalls({QStringLiteral("xdg-open ") + page(), QStringLiteral("gio open ") + page(),
                 QStringLiteral("exo-open ") + page()});
    expectNoNotification(guide);
}

TEST_F(Guidance, NotifiesWhereNothingOpensThePage) {
    install("xdg-open", "exit 3");
    FreeDesktopGuidance guide = guidance();
    guide.show(topic);
    EXPECT_TRUE(waitUntil([&] { return !notifications.shown.isEmpty(); }));
    EXPECT_EQ(notifications.shown, QStringList(QStringLiteral("Title|Text")));
    expectCalls({QStringLiteral("xdg-open ") + page()});
}

TEST_F(Guidance, NotifiesWhereAHandlerCannotBeStarted) {
    const QString file = path("bin/xdg-open");
    write(file, "#!/nonexistent/interpreter\n");
    QFile::setPermissions(file, QFile::ReadOwner | QFile::ExeOwner);
    FreeDesktopGuidance guide = guidance();
    guide.show(topic);
    EXPECT_TRUE(waitUntil([&] { return !notifications.shown.isEmpty(); }));
    EXPECT_EQ(notifications.shown, QStringList(QStringLiteral("Title|Text")));
}

TEST_F(Guidance, NotifiesWhereTheEnvironmentNamesNoPrograms) {
    for (const QString& nothing : {QString(), QStringLiteral(":")}) {
        environment.insert(QStringLiteral("PATH"), nothing);
        guidance().show(topic);
    }
    EXPECT_EQ(notifications.shown.size(), 2);
}

TEST_F(Guidance, NotifiesWhereThePageIsMissing) {
    install("xdg-open");
    QFile::remove(page());
    FreeDesktopGuidance guide = guidance();
    guide.show(topic);
    EXPECT_TRUE(waitUntil([&] { return !notifications.shown.isEmpty(); }));
    EXPECT_EQ(calls(), QStringList());
}

TEST_F(Guidance, NeitherWaitsForAHandlerNorEndsItWithItself) {
    const QByteArray gate = path("gate").toUtf8();
    ASSERT_EQ(::mkfifo(gate.constData(), 0600), 0);
    install("xdg-open",
            "read line < '" + gate + "'\necho ended >> '" + path("calls").toUtf8() + "'");
    {
        FreeDesktopGuidance guide = guidance();
        guide.show(topic);
        expectCalls({QStringLiteral("xdg-open ") + page()});
    }
    QFile opened(path("gate"));
    ASSERT_TRUE(opened.open(QIODevice::WriteOnly | QIODevice::Unbuffered));
    opened.write("go on\n");
    expectCalls({QStringLiteral("xdg-open ") + page(), QStringLiteral("ended")});
    EXPECT_EQ(notifications.shown, QStringList());
}

TEST_F(Guidance, TakesAHandlerThatEndsBadlyForAFailureOnlyWhileItIsNew) {
    using Time = std::chrono::milliseconds;
    const QString gate = path("gate");
    ASSERT_EQ(::mkfifo(gate.toUtf8().constData(), 0600), 0);
    // Held open at both ends, so that no order of openings makes either side wait for ever.
    QFile opened(gate);
    ASSERT_TRUE(opened.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    install("handler", "read line < '" + gate.toUtf8() + "'\neval \"$line\"");
    const Time trial = DetachedProcess::trialTime;
    for (const char* end : {"exit 3", "kill -9 $$", "exit 0"}) {
        for (const Time age : {Time(0), trial - Time(1), trial, Time(std::chrono::hours(9))}) {
            Time now{12345};
            QStringList outcome;
            DetachedProcess process([&] { return now; });
            process.handOver(
                path("bin/handler"), {}, QProcessEnvironment::systemEnvironment(),
                [&] { outcome.append(QStringLiteral("failed")); },
                [&] { outcome.append(QStringLiteral("done")); });
            now += age;
            opened.write(QByteArray(end) + '\n');
            EXPECT_TRUE(waitUntil([&] { return !outcome.isEmpty(); }));
            const bool isFailure = qstrcmp(end, "exit 0") != 0 && age < trial;
            EXPECT_EQ(outcome,
                      QStringList(isFailure ? QStringLiteral("failed") : QStringLiteral("done")))
                << end << " after " << age.count() << " ms";
        }
    }
}

} // namespace tilewright::testing
