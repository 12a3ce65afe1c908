// The copyright file of the Debian package: whatever others wrote of the program has its licence
// there.

#include <DebianRoot.h>

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>
#include <map>

namespace tilewright::testing {
namespace {

QByteArray contentsOf(const QString& path) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return file.readAll();
}

QString oneLine(const QByteArray& text) {
    return QString::fromUtf8(text).simplified();
}

/// Descriptions of Wayland's protocols of which a program speaks an interface, by their files'
/// names.
std::map<QString, QByteArray> spokenBy(const QByteArray& program, const QString& folder) {
    static const QRegularExpression interfaces(QStringLiteral(R"(<interface name="([^"]+)\")"));
    std::map<QString, QByteArray> found;
    QDirIterator all(folder, {QStringLiteral("*.xml")}, QDir::Files, QDirIterator::Subdirectories);
    while (all.hasNext()) {
        const QByteArray text = contentsOf(all.next());
        auto names = interfaces.globalMatch(QString::fromUtf8(text));
        while (names.hasNext())
            if (program.contains('\0' + names.next().captured(1).toLatin1() + '\0'))
                found[all.fileName()] = text;
    }
    return found;
}

QStringList namesOf(const std::map<QString, QByteArray>& files) {
    QStringList names;
    for (const auto& [name, text] : files)
        names.append(name);
    return names;
}

struct Copyright : ::testing::Test {
    Copyright() { root.install(root.package()); }

    const DebianRoot root;
};

} // namespace

TEST_F(Copyright, HasTheHoldersAndTheLicenceOfEveryProtocolThatTheProgramSpeaks) {
    const QByteArray program = contentsOf(root.program());
    const QString said =
        oneLine(contentsOf(root.path() + QStringLiteral("/usr/share/doc/tilewright/copyright")));
    const auto others = spokenBy(program, QStringLiteral(TILEWRIGHT_WAYLAND_PROTOCOLS));
    EXPECT_EQ(namesOf(others).join(u' ').toStdString(),
              "fractional-scale-v1.xml idle-inhibit-unstable-v1.xml viewporter.xml "
              "xdg-output-unstable-v1.xml");
    static const QRegularExpression wholeNotice(
        QStringLiteral("<copyright>(.*?)(Permission .*)</copyright>"),
        QRegularExpression::DotMatchesEverythingOption);
    for (const auto& [name, text] : others) {
        const QRegularExpressionMatch notice = wholeNotice.match(QString::fromUtf8(text));
        ASSERT_TRUE(notice.hasMatch()) << name.toStdString();
        for (const int part : {1, 2})
            EXPECT_TRUE(said.contains(notice.captured(part).simplified()))
                << name.toStdString() << ": " << notice.captured(part).toStdString();
    }

    const auto own = spokenBy(program, QStringLiteral(TILEWRIGHT_OWN_PROTOCOLS));
    EXPECT_EQ(namesOf(own).join(u' ').toStdString(), "key-states.xml layer-shell.xml");
    for (const char* name : {"org_kde_kwin_keystate", "zwlr_layer_shell_v1"})
        EXPECT_TRUE(said.contains(QString::fromLatin1(name))) << name;
}

} // namespace tilewright::testing
