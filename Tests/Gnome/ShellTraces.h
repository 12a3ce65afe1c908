#pragma once

#include "GnomeSession.h"

#include <QMap>
#include <QStringList>

namespace tilewright::testing {

/// What an extension has in a shell, and leaves there if it does not clear up. Looks at what is
/// done from the companion's own files from its making on; so the companion has to be off then.
class ShellTraces {
public:
    explicit ShellTraces(GnomeSession& session);

    /// What the companion has now.
    struct Held {
        int handlers = 0;
        int sources = 0;
        int watches = 0;

        friend bool operator==(const Held&, const Held&) = default;
    };
    [[nodiscard]] Held held() const;
    /// How many actors there are in the bar, whoever has put them there.
    [[nodiscard]] int actorsInBar() const;
    /// What the shell wants to hear from the bus, in order.
    [[nodiscard]] QStringList matchRules() const;
    /// What the shell has on the bus: each object with its interfaces, in order.
    [[nodiscard]] QStringList exportedObjects() const;

private:
    [[nodiscard]] QDBusMessage call(const QString& service, const QString& path,
                                    const QString& interface, const QString& method) const;
    void collectObjects(const QString& path, QStringList& objects) const;

    GnomeSession& session_;
};

} // namespace tilewright::testing
