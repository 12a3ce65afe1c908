#pragma once

class QWidget;

namespace tilewright::look {

/// Whether a widget that has the focus should show it now: to those who use the keyboard. A click
/// gives the focus, too, but who clicks knows where. Widgets ask whenever they paint; the one that
/// has the focus is repainted when the answer changes.
[[nodiscard]] bool showsFocus(const QWidget& widget);

/// Gives the focus to the first control within a view that was opened without the pointer, and
/// counts that as a use of the keyboard.
void focusFirstControl(const QWidget& view);

} // namespace tilewright::look
