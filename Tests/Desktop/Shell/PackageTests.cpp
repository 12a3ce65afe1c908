// The Debian package: built, installed below a folder of its own, run from there, removed.

#include "ShellDesktop.h"

#include <DebianRoot.h>
#include <Waiting.h>

#include <QFile>
#include <csignal>
#include <gtest/gtest.h>

namespace tilewright::testing {
namespace {

class DebianPackage : public ::testing::Test {
protected:
    QString run(const QString& program, const QStringList& arguments) {
        return outputOf(program, arguments, QProcessEnvironment::systemEnvironment());
    }
    /// What a checker has to say, and the code that it ends with.
    std::pair<QString, int> asked(const QString& checker, const QStringList& arguments) {
        const QString said = root.path() + QStringLiteral("/said");
        QFile::remove(said);
        Subprocess process;
        EXPECT_TRUE(
            process.start(checker, arguments, QProcessEnvironment::systemEnvironment(), said));
        EXPECT_TRUE(process.waitForEnd(120'000));
        QFile log(said);
        EXPECT_TRUE(log.open(QIODevice::ReadOnly));
        return {QString::fromUtf8(log.readAll()), process.exitCode()};
    }
    /// Runs a checker, which has to be content: what it says besides.
    QString contentedly(const QString& checker, const QStringList& arguments) {
        const auto [words, code] = asked(checker, arguments);
        EXPECT_EQ(code, 0) << checker.toStdString() << ": " << words.toStdString();
        return words;
    }
    /// The errors and warnings of a checker, all but one that newer ones have: there is no home
    /// page yet that the package's description could name.
    QStringList faults(const QString& checker, const QStringList& arguments, const char* allBut) {
        const auto [words, code] = asked(checker, arguments);
        QStringList found;
        for (const QString& line : words.split(u'\n')) {
            if ((line.startsWith(u'E') || line.startsWith(u'W')) &&
                !line.contains(QString::fromLatin1(allBut)))
                found.append(line);
        }
        EXPECT_TRUE(code == 0 || words.contains(QString::fromLatin1(allBut)))
            << words.toStdString();
        return found;
    }
    DebianRoot root;
    const QString file = root.package();
};

} // namespace

TEST_F(DebianPackage, NamesWhatItNeedsInstallsRunsAndLeavesNothingBehind) {
    const QString needs =
        run(QStringLiteral("dpkg-deb"), {QStringLiteral("-f"), file, QStringLiteral("Depends")});
    QStringList packages;
    for (const QString& entry : needs.split(u',')) {
        // Debian's libraries of a wider time have a name of their own for as long as both are
        // about.
        QString package = entry.trimmed().section(u' ', 0, 0);
        if (package.endsWith(QStringLiteral("t64")))
            package.chop(3);
        packages.append(package);
    }
    packages.sort();
    // Each for a reason, and nothing of the tests.
    EXPECT_EQ(packages.join(u' ').toStdString(),
              "fonts-dejavu-core libc6 libgcc-s1 libqt6core6 libqt6dbus6 libqt6gui6 libqt6svg6 "
              "libqt6widgets6 libstdc++6 libwayland-client0 libx11-6 libxcb-randr0 "
              "libxcb-screensaver0 libxcb-shape0 libxcb-shm0 libxcb-xfixes0 libxcb-xinput0 "
              "libxcb-xkb1 libxcb1");

    root.install(file);
    const QStringList files = root.installed();
    EXPECT_TRUE(files.contains(QStringLiteral("/usr/bin/tilewright")));
    EXPECT_TRUE(
        files.contains(QStringLiteral("/usr/share/icons/hicolor/scalable/apps/tilewright.svg")));
    EXPECT_TRUE(files.contains(QStringLiteral("/usr/share/man/man1/tilewright.1.gz")));
    // Both forms, what the shell asks for, and the icons.
    for (const char* part :
         {"extension.js", "__init__.js", "metadata.json", "icons/tilewright-symbolic.svg",
          "icons/tilewright-awake-symbolic.svg"})
        EXPECT_TRUE(files.contains(
            QStringLiteral("/usr/share/gnome-shell/extensions/tilewright@tilewright.org/%1")
                .arg(QString::fromLatin1(part))))
            << part;

    const QString share = root.path() + QStringLiteral("/usr/share");
    EXPECT_EQ(
        contentedly(QStringLiteral("desktop-file-validate"),
                    {share + QStringLiteral("/applications/org.tilewright.Tilewright.desktop")}),
        QString());
    EXPECT_EQ(faults(QStringLiteral("appstreamcli"),
                     {QStringLiteral("validate"), QStringLiteral("--no-net"),
                      share + QStringLiteral("/metainfo/org.tilewright.Tilewright.metainfo.xml")},
                     "url-homepage-missing")
                  .join(u'\n')
                  .toStdString(),
              "");
    EXPECT_EQ(faults(QStringLiteral("lintian"),
                     {QStringLiteral("--allow-root"), QStringLiteral("--fail-on"),
                      QStringLiteral("error,warning"), file},
                     "appstream-metadata-validation-failed")
                  .join(u'\n')
                  .toStdString(),
              "");

    ShellDesktop desktop;
    desktop.startTray(TrayHost::systemTray);
    Subprocess& program = desktop.startProgram(
        root.program(), {{QStringLiteral("XDG_DATA_DIRS"), root.dataFolders()}});
    desktop.openPanel();
    program.signal(SIGTERM);
    EXPECT_TRUE(program.waitForEnd());
    EXPECT_EQ(program.exitCode(), 0);

    root.purge();
    EXPECT_EQ(root.installed(), QStringList());
}

} // namespace tilewright::testing
