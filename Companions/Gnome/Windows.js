
function isX11Window(window) {
    return window.get_client_type() === Meta.WindowClientType.X11;
}

/** Whether a window belongs to the process. Of a Wayland window the kernel says so; an X11 window only
 *  claims it, and is never believed. */
function isWindowOf(window, pid) {
    return !isX11Window(window) && window.get_pid() === pid;
}

/** A window as it goes over the bus. */
function describeWindow(window, programPid) {
    return {
        id: window.get_id(),
        pid: window.get_pid(),
        x11: isX11Window(window),
        ours: isWindowOf(window, programPid),
        frame: numbersOf(window.get_frame_rect()),
    };
}

/** The window that the user works in; null where that is the desktop itself: what draws icons on it, or a
 *  bar, is a window as well. */
function windowInFront() {
    const window = global.display.focus_window;
    const {DESKTOP, DOCK} = Meta.WindowType;
    return window && ![DESKTOP, DOCK].includes(window.get_window_type()) ? window : null;
}

function managedWindows() {
    return global.get_window_actors().map(actor => actor.meta_window).filter(window => window);
}
