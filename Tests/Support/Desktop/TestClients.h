#pragma once

#include "DesktopSession.h"

namespace tilewright::testing {

/// The kinds of application windows that tests move about.
enum class ClientKind {
    /// A terminal: its size moves in increments of a character cell.
    xterm,
    /// A plain Qt window with the window manager's decorations.
    qt,
    /// A GTK 3 window that draws its own header bar and shadow.
    gtkClientDecorated,
    /// A dialog whose size is fixed.
    fixedDialog,
};

[[nodiscard]] const char* name(ClientKind kind);

/// A window of a real application in a test's desktop, managed and mapped.
struct TestClient {
    Subprocess* process = nullptr;
    XInspector::Window window = 0;
    QString title;
};

/// Starts an application and waits for its window. The title, unique by itself, is what the window
/// is found by. Fails the running test, and answers window 0, when it does not show. `area`, where
/// it is not empty, is asked for as the window's place and size (a dialog keeps its own size).
[[nodiscard]] TestClient startClient(DesktopSession& desktop, ClientKind kind, QRect area = {});

} // namespace tilewright::testing
