/** A frame that has not changed for so many milliseconds has settled. A change that was asked for can
 *  be undone a little later, by KWin's own answer to the same drop or by the client. */
const CALM = 150;

/** How often a frame is asked for at most: a client may have limits. */
const MOST_ASKS = 8;

/** Gives windows their frames, and says what became of it. */
class FrameWriter {
    /** `settled(window)` is called when a window's frame is as asked for, or will not be. */
    constructor(settled) {
        this._settled = settled;
        this._pending = new Map();
    }

    get isIdle() {
        return this._pending.size === 0;
    }

    write(window, frame) {
        this.forget(window);
        const pending = {frame, asks: 0, isAsking: false, refusal: null};
        pending.look = () => this._look(window, pending);
        pending.timer = later(CALM, () => {
            this.forget(window);
            this._settled(window);
        });
        this._pending.set(window, pending);
        window.frameGeometryChanged.connect(pending.look);
        FrameWriter._ask(window, pending);
    }

    /** Leaves the window as it is from now on. */
    forget(window) {
        const pending = this._pending.get(window);
        if (!pending)
            return;
        this._pending.delete(window);
        pending.timer.stop();
        window.frameGeometryChanged.disconnect(pending.look);
    }

    _look(window, pending) {
        if (pending.isAsking)
            return;
        const now = copyOf(window.frameGeometry);
        const isDone = isSameRect(now, pending.frame);
        // What comes back a second time is all that the client can do.
        const isRefused = pending.refusal !== null && isSameRect(now, pending.refusal);
        pending.refusal = isDone ? pending.refusal : now;
        if (isDone || isRefused || pending.asks >= MOST_ASKS)
            pending.timer.start();
        else
            FrameWriter._ask(window, pending);
    }

    static _ask(window, pending) {
        ++pending.asks;
        // What is set here may be told at once.
        pending.isAsking = true;
        if (window.fullScreen)
            window.fullScreen = false;
        if (window.tile)
            window.tile = null;
        if (window.maximizeMode !== 0)
            window.setMaximize(false, false);
        window.frameGeometry = pending.frame;
        pending.isAsking = false;
        pending.timer.start();
    }
}
