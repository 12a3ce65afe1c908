#include "TestHelperProcess.h"

#include <QProcess>

namespace tilewright {

QString testHelperPath() {
    return QString::fromUtf8(TILEWRIGHT_TEST_HELPER);
}

TestHelperRun runTestHelper(const QStringList& arguments) {
    QProcess process;
    process.setProcessChannelMode(QProcess::ForwardedErrorChannel);
    process.start(testHelperPath(), arguments);
    if (!process.waitForFinished(30000)) {
        process.kill();
        process.waitForFinished();
        return {};
    }
    const QString output = QString::fromUtf8(process.readAllStandardOutput());
    return {process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1,
            output.split(u'\n', Qt::SkipEmptyParts)};
}

} // namespace tilewright
