#pragma once

namespace tilewright {

/// Tells assistive tools of this application's pop-ups as they are told of its windows: the panel,
/// menus and lists of choices, while they are shown. Qt itself leaves pop-ups out of the
/// application's tree, so that a reader could not find the panel. Tells them, too, that the panel
/// is a dialog and the settings are a window.
///
/// Needs Qt's application object. Calling it again changes nothing. Main thread only.
void installAccessibleApplication();

} // namespace tilewright
