#include <FreeDesktop/DetachedProcess.h>
#include <Waiting.h>

#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>
#include <sys/stat.h>

namespace tilewright::testing {

TEST(DetachedProcess, TakesOneThatEndsBadlyForAFailureOnlyWhileItIsNew) {
    using Time = std::chrono::milliseconds;
    const QTemporaryDir folder;
    const QString gate = folder.filePath(QStringLiteral("gate"));
    const QString handler = folder.filePath(QStringLiteral("handler"));
    ASSERT_EQ(::mkfifo(gate.toUtf8().constData(), 0600), 0);
    // Held open at both ends, so that no order of openings makes either side wait for ever.
    QFile opened(gate);
    ASSERT_TRUE(opened.open(QIODevice::ReadWrite | QIODevice::Unbuffered));
    QFile script(handler);
    ASSERT_TRUE(script.open(QIODevice::WriteOnly));
    script.write("#!/bin/sh\nread line < '" + gate.toUtf8() + "'\neval \"$line\"\n");
    script.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    script.close();
    const Time trial = DetachedProcess::trialTime;
    for (const char* end : {"exit 3", "kill -9 $$", "exit 0"}) {
        for (const Time age : {Time(0), trial - Time(1), trial, Time(std::chrono::hours(9))}) {
            Time now{12345};
            QStringList outcome;
            DetachedProcess process([&] { return now; });
            process.handOver(
                handler, {}, QProcessEnvironment::systemEnvironment(),
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
