#include "AccessibilityListener.h"

#include "Waiting.h"

#include <QJsonDocument>
#include <QJsonObject>
#include <csignal>
#include <sys/prctl.h>

namespace tilewright::testing {

AccessibilityListener::AccessibilityListener(const QProcessEnvironment& environment) {
    process_.setProcessEnvironment(environment);
    process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process_.start(QStringLiteral("/usr/bin/python3"),
                   {QStringLiteral(TILEWRIGHT_ACCESSIBILITY_LISTENER)});
    static_cast<void>(waitUntil([&] { return !shown(QStringLiteral("listening")).isEmpty(); }));
}

AccessibilityListener::~AccessibilityListener() {
    process_.kill();
    process_.waitForFinished();
}

void AccessibilityListener::read() {
    process_.waitForReadyRead(0);
    while (process_.canReadLine()) {
        const QJsonObject object = QJsonDocument::fromJson(process_.readLine()).object();
        heard_.append(
            {object[QStringLiteral("role")].toString(), object[QStringLiteral("name")].toString()});
    }
}

QStringList AccessibilityListener::shown(const QString& role) {
    read();
    QStringList names;
    for (const QStringList& each : heard_) {
        if (each[0] == role)
            names.append(each[1]);
    }
    return names;
}

} // namespace tilewright::testing
