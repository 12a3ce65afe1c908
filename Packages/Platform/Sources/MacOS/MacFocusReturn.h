#pragma once

#include "MacWorkspace.h"

#include <Platform/Lifetime.h>
#include <Platform/MainLoop.h>

#include <QObject>

namespace tilewright {

/// Gives the keyboard back to the application that the user worked in, once no window of this
/// program is on the screen any more: the system itself leaves a program without windows the active
/// one. Needs Qt's application object. Main thread only; what it is made with has to outlive it.
class MacFocusReturn final {
public:
    MacFocusReturn(MainLoop& loop, MacWorkspace& workspace);

    /// A window has gone. What follows from that is done on a later turn of the loop: another
    /// window may take its place. Qt tells of ordinary windows by itself.
    void windowClosed();

private:
    MainLoop& loop_;
    MacWorkspace& workspace_;
    /// Its end disconnects.
    QObject context_;
    Lifetime life_;
};

} // namespace tilewright
