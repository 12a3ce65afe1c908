#include "StoreCrash.h"

#include "SampleLayout.h"
#include "TestHelperProcess.h"

#include <WindowManager/LayoutCoding.h>
#include <WindowManager/LayoutStore.h>

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QTemporaryDir>
#include <chrono>
#include <random>
#include <thread>

namespace tilewright {

namespace {

std::optional<LayoutCoding::Persisted> read(const QString& path) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return std::nullopt;
    return LayoutCoding::decodePersisted(file.readAll());
}

/// The number of the last document that the process said it had saved.
std::optional<int> lastAcknowledged(const QByteArray& output) {
    const auto end = output.lastIndexOf('\n');
    if (end < 0)
        return std::nullopt;
    const auto start = output.lastIndexOf('\n', end - 1) + 1;
    return output.mid(start, end - start).toInt();
}

} // namespace

StoreCrashResult crashSavingProcesses(int kills, unsigned seed) {
    StoreCrashResult result;
    const QTemporaryDir folder;
    const QString path = folder.filePath(QStringLiteral("layouts.json"));
    std::mt19937 random(seed);
    int next = 1;
    while (result.kills < kills) {
        QProcess process;
        process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
        process.start(testHelperPath(),
                      {QStringLiteral("save-forever"), path, QString::number(next)});
        if (!process.waitForReadyRead(30000)) {
            result.failure = "the saving process does not save";
            return result;
        }
        // The moment is what varies; nothing is waited for.
        std::this_thread::sleep_for(std::chrono::microseconds(random() % 10000));
        process.kill();
        process.waitForFinished(30000);
        ++result.kills;
        const auto acknowledged = lastAcknowledged(process.readAllStandardOutput());
        const auto found = read(path);
        if (!acknowledged || !found || found->customLayouts.size() != 1) {
            result.failure = "the file is not one whole document";
            return result;
        }
        result.saves += *acknowledged - next + 1;
        const int number = found->customLayouts.front().name.toInt();
        if (found->customLayouts.front() != sampleLayout(number) ||
            (number != *acknowledged && number != *acknowledged + 1)) {
            result.failure = "the file holds neither the old document nor the new one";
            return result;
        }
        ++(number == *acknowledged ? result.foundOld : result.foundNew);
        next = number + 1;
    }
    const QDir place(folder.path());
    const auto countOthers = [&] {
        return static_cast<int>(place.entryList(QDir::Files | QDir::Hidden).size()) - 1;
    };
    result.leftBehind = countOthers();
    for (const QString& name : place.entryList(QDir::Files | QDir::Hidden)) {
        QFile file(place.filePath(name));
        if (file.open(QIODevice::ReadWrite))
            file.setFileTime(QDateTime::currentDateTime().addSecs(-120),
                             QFileDevice::FileModificationTime);
    }
    (void)LayoutStore(path);
    result.strayFiles = countOthers();
    return result;
}

} // namespace tilewright
