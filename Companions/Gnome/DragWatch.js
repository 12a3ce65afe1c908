
/** How often, in milliseconds, the keys are looked at while a drag lasts: during one no signal tells of
 *  a key that goes down or up. */
const KEY_INTERVAL = 40;

// A grab's operation: what is done, and flags.
const OPERATION = 0xff;
const BY_KEYBOARD = 0x100;
const RESIZED_EDGES = 0xf000;

/** Whether a window is being moved by the pointer. Other flags are about constraints alone. */
function isPointerMove(operation) {
    return (operation & OPERATION) === (Meta.GrabOp.MOVING & OPERATION) &&
        (operation & (BY_KEYBOARD | RESIZED_EDGES)) === 0;
}

function cursorTracker() {
    return global.backend.get_cursor_tracker
        ? global.backend.get_cursor_tracker()
        : Meta.CursorTracker.get_for_display(global.display);
}

/** Reports windows being moved by the pointer. */
class DragWatch {
    /** `ended()` is called when a drag is over or nobody is to hear more of it. */
    constructor(programPid, outbox, ended) {
        this._programPid = programPid;
        this._outbox = outbox;
        this._ended = ended;
        this._serial = 0;
        this._window = null;
        this._keyTimer = 0;
        this._dragSignals = new Signals();
        this._signals = new Signals();
        // Newer shells pass one more argument, at the end.
        this._signals.connect(global.display, 'grab-op-begin',
            (_display, window, operation) => this._begin(window, operation));
        this._signals.connect(global.display, 'grab-op-end', () => this._end());
    }

    destroy() {
        this._signals.disconnectAll();
        this.forget();
    }

    /** The window that is dragged, or null. */
    get window() {
        return this._window;
    }

    /** Reports nothing more of the drag that runs. */
    forget() {
        if (!this._window)
            return;
        this._window = null;
        this._dragSignals.disconnectAll();
        GLib.source_remove(this._keyTimer);
        this._keyTimer = 0;
        this._ended();
    }

    _begin(window, operation) {
        this.forget();
        if (!window || !isPointerMove(operation))
            return;
        this._window = window;
        ++this._serial;
        this._dragSignals.connect(cursorTracker(), 'position-invalidated', () => this._tell('DragMotion'));
        this._dragSignals.connect(window, 'unmanaging', () => this._end(true));
        this._keyTimer = GLib.timeout_add(GLib.PRIORITY_DEFAULT, KEY_INTERVAL, () => {
            if (readPointer().keys !== this._keys)
                this._tell('DragMotion');
            return GLib.SOURCE_CONTINUE;
        });
        // Nobody needs to hear any more of an earlier one.
        this._outbox.drop('DragBegin', 'DragMotion', 'DragEnd');
        this._tell('DragBegin');
    }

    _end(isGone = false) {
        if (!this._window)
            return;
        // Escape ends the grab while the button is still down.
        this._tell('DragEnd', {cancelled: isGone || readPointer().isPressed});
        this.forget();
    }

    _tell(method, more = {}) {
        const {pointer, keys} = readPointer();
        this._keys = keys;
        const window = describeWindow(this._window, this._programPid);
        this._outbox.put(method, {drag: this._serial, window, pointer, keys, ...more});
    }
}
