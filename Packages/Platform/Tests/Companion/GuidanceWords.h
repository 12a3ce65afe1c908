#pragma once

#include <FreeDesktop/FreeDesktopGuidance.h>

#include <QLabel>
#include <QPushButton>

namespace tilewright::testing {

/// What the window of a guidance says comes next, while it is open.
[[nodiscard]] inline QString titleIn(const FreeDesktopGuidance& guidance) {
    return guidance.window()->findChild<QLabel*>(QStringLiteral("title"))->text();
}

/// What it offers to do.
[[nodiscard]] inline QPushButton* actionIn(const FreeDesktopGuidance& guidance) {
    return guidance.window()->findChild<QPushButton*>(QStringLiteral("action"));
}

} // namespace tilewright::testing
