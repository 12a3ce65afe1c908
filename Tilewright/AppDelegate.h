#pragma once

namespace tilewright {

/// Starts and stops the long-running services. Has no state; every call asserts that it is on the
/// main thread.
class AppDelegate {
public:
    /// Launching has finished: asks for the accessibility permission where it is missing, then
    /// starts the snap controller.
    void applicationDidFinishLaunching();
    /// The application is about to end: ends any keep-awake session, then stops the snap
    /// controller.
    void applicationWillTerminate();
};

} // namespace tilewright
