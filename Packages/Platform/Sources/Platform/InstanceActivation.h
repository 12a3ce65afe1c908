#pragma once

#include "PostedCall.h"
#include "QtMainLoop.h"

#include <QObject>

namespace tilewright {

/// Keeps the program to one instance on a user's desktop. Main thread only.
class InstanceActivation : public QObject {
    Q_OBJECT

public:
    using QObject::QObject;
    ~InstanceActivation() override;

    /// What `claim` found.
    enum class Claim {
        /// This process is the only instance, or nothing here can tell.
        first,
        /// Another instance runs; it has been asked to show itself, and this one should end.
        another,
    };

    /// Claims to be the one instance; called once at start.
    [[nodiscard]] virtual Claim claim() = 0;

    /// Tells on a later turn that somebody asked, who may be anybody: once of requests that wait
    /// together.
    void requestActivation();

Q_SIGNALS:
    /// The program was started again: show the panel near the pointer.
    void activationRequested();

private:
    QtMainLoop loop_;
    PostedCall request_{loop_, [this] { Q_EMIT activationRequested(); }};
};

} // namespace tilewright
