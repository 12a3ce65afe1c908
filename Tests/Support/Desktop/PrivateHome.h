#pragma once

#include "Subprocess.h"

#include <QProcessEnvironment>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace tilewright::testing {

/// Writes a whole file, and the folders above it where there are none. Fails the running test where
/// it cannot.
void writeFile(const QString& path, const QByteArray& contents);

/// What programs of a desktop of a test's own take over from the outer one: where things are found,
/// and what the checkers of memory are told.
[[nodiscard]] QProcessEnvironment inheritedEnvironment();

/// The home of a desktop of a test's own, and the programs that run in it: a folder with everything
/// below it that programs look for in a home, gone with the object.
class PrivateHome {
public:
    PrivateHome();

    [[nodiscard]] QString path() const { return folder_.path(); }
    /// What its programs run with: its folders, no trace of the outer desktop.
    [[nodiscard]] const QProcessEnvironment& environment() const { return environment_; }
    /// Gives the environment of programs started from now on a variable.
    void set(const char* variable, const QString& value);

    /// Starts a program; it ends with the home. The reference stays valid. It prints to logFile(),
    /// or to a log of its own with that name.
    Subprocess& start(const QString& program, const QStringList& arguments = {},
                      const std::map<QString, QString>& moreEnvironment = {},
                      const QString& ownLog = {});
    /// Ends what was started here.
    void endPrograms() { programs_.clear(); }

    /// Where programs started here print to that have no log of their own.
    [[nodiscard]] QString logFile() const;
    /// What has been printed last, to each log, for the message of a failed test.
    [[nodiscard]] std::string lastPrinted() const;

private:
    // The folder outlives every process that writes into it.
    QTemporaryDir folder_;
    QProcessEnvironment environment_;
    std::vector<std::unique_ptr<Subprocess>> programs_;
    QStringList ownLogs_;
};

} // namespace tilewright::testing
