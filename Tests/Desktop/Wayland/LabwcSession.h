#pragma once

#include "LayerSession.h"

namespace tilewright::testing {

/// Labwc without a screen: one display of 1280 by 720 pixels.
class LabwcSession final : public LayerSession {
public:
    explicit LabwcSession(Beside beside = Beside::nothing) {
        using namespace Qt::StringLiterals;
        const QString configuration = folder().filePath(u"labwc"_s);
        writeFile(configuration + u"/rc.xml"_s, "<labwc_config/>\n");
        // There is a server in any case, which starts when somebody wants it.
        writeFile(configuration + u"/autostart"_s,
                  beside == Beside::xServer ? toldXDisplay().toUtf8() + '\n' : QByteArray());
        startCompositor(u"labwc"_s, {u"-C"_s, configuration});
    }

private:
    [[nodiscard]] QString socketName() const override { return QStringLiteral("wayland-0"); }
};

} // namespace tilewright::testing
