#pragma once

#include <QProcess>
#include <QString>
#include <QStringList>

namespace tilewright::testing {

/// Hears what programs announce on the accessibility bus, in a process of its own: a screen reader
/// that knows nothing of the program under test.
class AccessibilityListener {
public:
    /// Listens from its construction on. `environment` is the desktop's.
    explicit AccessibilityListener(const QProcessEnvironment& environment);
    ~AccessibilityListener();

    /// The names of the objects of a role that have come to be shown so far, in that order.
    [[nodiscard]] QStringList shown(const QString& role);

private:
    void read();

    QProcess process_;
    QList<QStringList> heard_;
};

} // namespace tilewright::testing
