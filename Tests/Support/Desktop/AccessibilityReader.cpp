#include "AccessibilityReader.h"

#include "Waiting.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <csignal>
#include <sys/prctl.h>

namespace tilewright::testing {

namespace {

AccessibleNode nodeFrom(const QJsonObject& object) {
    AccessibleNode node;
    node.role = object[QStringLiteral("role")].toString();
    node.name = object[QStringLiteral("name")].toString();
    node.description = object[QStringLiteral("description")].toString();
    node.depth = object[QStringLiteral("depth")].toInt();
    const QJsonArray states = object[QStringLiteral("states")].toArray();
    for (const auto& state : states)
        node.states.append(state.toString());
    const QJsonArray frame = object[QStringLiteral("frame")].toArray();
    node.frame = QRect(frame[0].toInt(), frame[1].toInt(), frame[2].toInt(), frame[3].toInt());
    return node;
}

} // namespace

AccessibilityReader::AccessibilityReader(const QProcessEnvironment& environment) {
    process_.setProcessEnvironment(environment);
    process_.setChildProcessModifier([] { ::prctl(PR_SET_PDEATHSIG, SIGKILL); });
    process_.start(QStringLiteral("/usr/bin/python3"),
                   {QStringLiteral(TILEWRIGHT_ACCESSIBILITY_READER)});
}

AccessibilityReader::~AccessibilityReader() {
    process_.kill();
    process_.waitForFinished();
}

void AccessibilityReader::enable(QProcessEnvironment& environment) {
    environment.insert(QStringLiteral("QT_LINUX_ACCESSIBILITY_ALWAYS_ON"), QStringLiteral("1"));
}

std::vector<AccessibleNode> AccessibilityReader::showing(qint64 process) {
    process_.write(QByteArray::number(process) + '\n');
    if (!waitUntil([&] { return process_.canReadLine(); }))
        return {};
    std::vector<AccessibleNode> nodes;
    const QJsonArray all = QJsonDocument::fromJson(process_.readLine()).array();
    for (const auto& value : all) {
        const AccessibleNode node = nodeFrom(value.toObject());
        if (node.is(QStringLiteral("showing")))
            nodes.push_back(node);
    }
    return nodes;
}

std::optional<AccessibleNode> AccessibilityReader::find(qint64 process, const QString& role,
                                                        const QString& name) {
    for (const AccessibleNode& node : showing(process)) {
        if (node.role == role && (name.isNull() || node.name == name))
            return node;
    }
    return std::nullopt;
}

} // namespace tilewright::testing
