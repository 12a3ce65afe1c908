#pragma once

namespace tilewright {

/// Makes assistive tools see the editor's canvas as a list, its tiles as items that can be selected
/// and its handles as buttons, its badge as a text and its messages as alerts. Further calls do
/// nothing.
void installZoneEditorAccessibility();

} // namespace tilewright
