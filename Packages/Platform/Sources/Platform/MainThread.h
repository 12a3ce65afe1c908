#pragma once

namespace tilewright {

/// Whether the calling thread is the main thread.
[[nodiscard]] bool isMainThread();

/// Aborts the process, with a message that names the file and line, unless it is called on the main
/// thread: code of this program runs there only, and a violation is a programming error.
void assertMainThread(const char* file, int line);

} // namespace tilewright
