
/** When a frame that was asked for is looked at, in milliseconds since: a client takes its time, and a
 *  window that changes to a display of another scale is resized once it is there. */
const LOOKS = [150, 300];

/** Gives windows their frames, and says what became of it. */
class FrameWriter {
    /** `settled(window)` is called when a window's frame is as asked for, or will not be. */
    constructor(settled) {
        this._settled = settled;
        this._pending = new Map();
    }

    destroy() {
        for (const window of [...this._pending.keys()])
            this.forget(window);
    }

    /** Gives the window this frame; an older one that still waits for a look is given up. */
    write(window, frame) {
        this.forget(window);
        FrameWriter._apply(window, frame);
        const signals = new Signals();
        signals.connect(window, 'unmanaging', () => this.forget(window));
        this._pending.set(window, {frame, signals, look: 0, timer: 0});
        this._lookLater(window);
    }

    /** Leaves the window as it is from now on. */
    forget(window) {
        const pending = this._pending.get(window);
        if (!pending)
            return;
        this._pending.delete(window);
        pending.signals.disconnectAll();
        if (pending.timer)
            GLib.source_remove(pending.timer);
    }

    _lookLater(window) {
        const pending = this._pending.get(window);
        const since = pending.look > 0 ? LOOKS[pending.look - 1] : 0;
        pending.timer = GLib.timeout_add(GLib.PRIORITY_DEFAULT, LOOKS[pending.look] - since, () => {
            pending.timer = 0;
            this._look(window, pending);
            return GLib.SOURCE_REMOVE;
        });
    }

    _look(window, pending) {
        const isLast = ++pending.look === LOOKS.length;
        const isDone = !FrameWriter._isMaximized(window) && isSameRect(window.get_frame_rect(), pending.frame);
        if (!isDone && !isLast) {
            FrameWriter._apply(window, pending.frame);
            this._lookLater(window);
            return;
        }
        this.forget(window);
        this._settled(window);
    }

    static _apply(window, {x, y, width, height}) {
        if (window.is_fullscreen())
            window.unmake_fullscreen();
        if (FrameWriter._isMaximized(window))
            FrameWriter._unmaximize(window);
        // As if the user had not asked: else a window that cannot have exactly this size is not
        // moved either.
        window.move_resize_frame(false, x, y, width, height);
    }

    /** Being tiled at an edge counts. */
    static _isMaximized(window) {
        return (window.get_maximize_flags ? window.get_maximize_flags() : window.get_maximized()) !== 0;
    }

    static _unmaximize(window) {
        if (window.get_maximize_flags)
            window.unmaximize();
        else
            window.unmaximize(Meta.MaximizeFlags.BOTH);
    }
}
