#include "DebianRoot.h"

#include "PrivateHome.h"
#include "Subprocess.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <gtest/gtest.h>

namespace tilewright::testing {

namespace {

void run(const QString& program, const QStringList& arguments) {
    Subprocess process;
    EXPECT_TRUE(process.start(program, arguments, QProcessEnvironment::systemEnvironment()));
    // Looking up what the program links to takes its time.
    EXPECT_TRUE(process.waitForEnd(180'000));
    EXPECT_EQ(process.exitCode(), 0) << program.toStdString();
}

void replaceIn(const QString& path, const QString& pattern, const QString& replacement) {
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    const QString before = QString::fromUtf8(file.readAll());
    file.close();
    QString after = before;
    after.replace(QRegularExpression(pattern, QRegularExpression::MultilineOption), replacement);
    EXPECT_NE(after, before) << path.toStdString();
    writeFile(path, after.toUtf8());
}

} // namespace

DebianRoot::DebianRoot() {
    for (const char* part : {"/var/lib/dpkg/info", "/var/lib/dpkg/updates", "/packages"})
        QDir().mkpath(path() + QLatin1String(part));
    const QString packages = path() + QStringLiteral("/packages");
    run(QStringLiteral("cpack"),
        {QStringLiteral("--config"), QStringLiteral(TILEWRIGHT_BUILD_FOLDER "/CPackConfig.cmake"),
         QStringLiteral("-G"), QStringLiteral("DEB"), QStringLiteral("-B"), packages});
    const QStringList built = QDir(packages).entryList({QStringLiteral("tilewright_*.deb")});
    EXPECT_EQ(built.size(), 1);
    package_ = packages + u'/' + built.value(0);
    writeFile(path() + QStringLiteral("/var/lib/dpkg/status"), whatItNeeds().toUtf8());
}

QString DebianRoot::whatItNeeds() const {
    const QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    QStringList arguments{QStringLiteral("--status")};
    const QString needs =
        outputOf(QStringLiteral("dpkg-deb"),
                 {QStringLiteral("-f"), package_, QStringLiteral("Depends")}, environment);
    for (const QString& entry : needs.split(u','))
        arguments.append(entry.trimmed().section(u' ', 0, 0));
    return outputOf(QStringLiteral("dpkg"), arguments, environment);
}

QString DebianRoot::packageAsVersion(const QString& version) const {
    const QString contents = path() + QStringLiteral("/contents");
    const QString result = path() + QStringLiteral("/tilewright_%1.deb").arg(version);
    run(QStringLiteral("dpkg-deb"), {QStringLiteral("--raw-extract"), package_, contents});
    replaceIn(contents + QStringLiteral("/DEBIAN/control"), QStringLiteral("^Version: .*$"),
              QStringLiteral("Version: ") + version);
    replaceIn(contents + QStringLiteral("/usr/share/gnome-shell/extensions/"
                                        "tilewright@tilewright.org/metadata.json"),
              QStringLiteral("\"version-name\": \"[^\"]*\""),
              QStringLiteral("\"version-name\": \"%1\"").arg(version));
    run(QStringLiteral("dpkg-deb"),
        {QStringLiteral("--root-owner-group"), QStringLiteral("--build"), contents, result});
    EXPECT_TRUE(QDir(contents).removeRecursively());
    return result;
}

QStringList DebianRoot::installed() const {
    QStringList files;
    QDirIterator all(path() + QStringLiteral("/usr"), QDir::Files | QDir::NoDotAndDotDot,
                     QDirIterator::Subdirectories);
    while (all.hasNext())
        files.append(all.next().mid(path().size()));
    files.sort();
    return files;
}

void DebianRoot::dpkg(const QStringList& arguments) const {
    run(QStringLiteral("dpkg"),
        QStringList{QStringLiteral("--root=") + path(), QStringLiteral("--force-not-root"),
                    // A machine may be set up to leave manuals out.
                    QStringLiteral("--path-include=/usr/*"), QStringLiteral("--log=/dev/null")} +
            arguments);
}

} // namespace tilewright::testing
