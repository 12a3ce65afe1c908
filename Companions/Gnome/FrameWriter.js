
/** When a frame that was asked for is looked at, in milliseconds since: a client takes its time. */
const LOOKS = [150, 300];

/** The same where the shell scales windows that come to a display of another scale: with the client's
 *  answer, and so as late as that. */
const LOOKS_AMONG_SCALES = [150, 300, 600, 1200, 2400];

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
        const looks = FrameWriter._areScalesMixed() ? LOOKS_AMONG_SCALES : LOOKS;
        this._pending.set(window, {frame, signals, looks, look: 0, timer: 0});
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
        const since = pending.look > 0 ? pending.looks[pending.look - 1] : 0;
        pending.timer = GLib.timeout_add(GLib.PRIORITY_DEFAULT, pending.looks[pending.look] - since, () => {
            pending.timer = 0;
            this._look(window, pending);
            return GLib.SOURCE_REMOVE;
        });
    }

    _look(window, pending) {
        const isLast = ++pending.look === pending.looks.length;
        const isMaximized = FrameWriter._isMaximized(window);
        // Maximized that late, it was so by the user.
        const isDone = isMaximized ? pending.look > LOOKS.length
            : isSameRect(window.get_frame_rect(), pending.frame);
        if (!isDone && !isLast) {
            FrameWriter._apply(window, pending.frame);
            this._lookLater(window);
            return;
        }
        this.forget(window);
        this._settled(window);
    }

    static _apply(window, frame) {
        const {x, y, width, height} = frame;
        if (window.is_fullscreen())
            window.unmake_fullscreen();
        if (FrameWriter._isMaximized(window))
            FrameWriter._unmaximize(window);
        FrameWriter._bringToScaleOf(window, frame);
        // As if the user had not asked: else a window that cannot have exactly this size is not
        // moved either.
        window.move_resize_frame(false, x, y, width, height);
    }

    /** Whether the stage has the displays' own pixels, and these are not of one size. */
    static _areScalesMixed() {
        const [first, ...others] = Main.layoutManager.monitors;
        return others.some(monitor => monitor.geometry_scale !== first.geometry_scale);
    }

    /** Where the stage has the displays' own pixels, the shell scales a window that comes to a display of
     *  another scale. It comes there first, or it would lose the size that it is given. */
    static _bringToScaleOf(window, {x, y, width, height}) {
        const {monitors} = Main.layoutManager;
        const target = monitors.find(monitor => isInRect(x + width / 2, y + height / 2, monitor));
        if (target && target.geometry_scale !== monitors[window.get_monitor()]?.geometry_scale)
            window.move_to_monitor(target.index);
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
