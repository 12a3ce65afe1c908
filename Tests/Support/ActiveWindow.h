#pragma once

#include <QTest>
#include <QWidget>
#include <gtest/gtest.h>

namespace tilewright::testing {

/// Makes a window that is shown the active one, as a click into it would: its widgets can have the
/// focus from then on.
inline void makeActive(QWidget& window) {
    window.activateWindow();
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
}

} // namespace tilewright::testing
