#pragma once

#include "LayerSession.h"

namespace tilewright::testing {

/// Wayfire without a screen: one display of 1280 by 720 pixels.
class WayfireSession final : public LayerSession {
public:
    explicit WayfireSession(Beside beside = Beside::nothing) {
        using namespace Qt::StringLiterals;
        const bool hasX = beside == Beside::xServer;
        const QString configuration = folder().filePath(u"wayfire.ini"_s);
        writeFile(configuration, u"[core]\n"
                                 "plugins = autostart idle place wm-actions\n"
                                 "xwayland = %1\n"
                                 "[autostart]\n"
                                 "autostart_wf_shell = false\n%2\n"
                                 "[output:HEADLESS-1]\n"
                                 "mode = 1280x720\n"_s
                                     .arg(hasX ? u"true"_s : u"false"_s,
                                          hasX ? u"tell = "_s + toldXDisplay() : QString())
                                     .toUtf8());
        startCompositor(u"wayfire"_s, {u"-c"_s, configuration});
    }

private:
    [[nodiscard]] QString socketName() const override { return QStringLiteral("wayland-1"); }
};

} // namespace tilewright::testing
