#pragma once

namespace tilewright {

/// Makes assistive tools see the editor's tiles as items that can be selected, and its handles as
/// grips. Further calls do nothing.
void installZoneEditorAccessibility();

} // namespace tilewright
