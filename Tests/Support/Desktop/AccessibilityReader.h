#pragma once

#include <QProcess>
#include <QRect>
#include <QString>
#include <QStringList>
#include <optional>
#include <vector>

namespace tilewright::testing {

/// What assistive tools are told of one part of a program's windows.
struct AccessibleNode {
    QString role;
    QString name;
    QString description;
    /// Such as "checked", "focused", "showing".
    QStringList states;
    /// On the X screen.
    QRect frame;
    int depth = 0;

    [[nodiscard]] bool is(const QString& state) const { return states.contains(state); }
};

/// Reads programs' windows through the accessibility bus, in a process of its own: a screen reader
/// that knows nothing of the program under test.
class AccessibilityReader {
public:
    /// `environment` is the desktop's. Programs started with `enable` take part.
    explicit AccessibilityReader(const QProcessEnvironment& environment);
    ~AccessibilityReader();

    /// Makes a toolkit offer its windows to assistive tools.
    static void enable(QProcessEnvironment& environment);

    /// Everything that is shown of the program now, in the order of its tree; nothing when it
    /// cannot be read, such as while it is starting or changing.
    [[nodiscard]] std::vector<AccessibleNode> showing(qint64 process);
    /// What is shown in this role under this name (any, where that is null).
    [[nodiscard]] std::optional<AccessibleNode> find(qint64 process, const QString& role,
                                                     const QString& name = {});

private:
    QProcess process_;
};

} // namespace tilewright::testing
