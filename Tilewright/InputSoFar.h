#pragma once

#include <functional>

class QObject;

namespace tilewright {

/// Calls back from the event loop once the event monitors have been told of all input that happened
/// before this call: monitors added then hear only of what is newer. Not called any more once
/// `context` is gone. Costs two round trips to the display server.
void afterInputSoFar(QObject* context, std::function<void()> then);

} // namespace tilewright
