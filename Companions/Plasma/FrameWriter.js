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
        /** By the windows' numbers: KWin 5 tells at times of another object when a window closes. */
        this._pending = new Map();
    }

    get isIdle() {
        return this._pending.size === 0;
    }

    write(window, frame) {
        this.forget(window);
        const pending = {frame, asks: 0, isAsking: false, refusal: null};
        pending.look = () => this._look(window, pending);
        pending.timer = later(CALM, () => this._settle(window, pending));
        this._pending.set(idOf(window), pending);
        window.frameGeometryChanged.connect(pending.look);
        FrameWriter._ask(window, pending);
    }

    /** Leaves the window as it is from now on. */
    forget(window) {
        const pending = this._pending.get(idOf(window));
        this.lose(window);
        if (pending)
            window.frameGeometryChanged.disconnect(pending.look);
    }

    /** The same for one that is no more, of which nothing may be touched. */
    lose(window) {
        const pending = this._pending.get(idOf(window));
        if (!pending)
            return;
        this._pending.delete(idOf(window));
        pending.timer.stop();
        pending.isAsking = true;
    }

    /** Whatever undoes what was asked for, it is asked for again at once. */
    _look(window, pending) {
        if (pending.isAsking)
            return;
        // The user's hand is on it again.
        if (window.move) {
            this.forget(window);
            this._settled(window);
            return;
        }
        if (FrameWriter._isDone(window, pending) || pending.asks >= MOST_ASKS)
            pending.timer.start();
        else
            FrameWriter._ask(window, pending);
    }

    /** A frame that comes back once more is all that the client can do. */
    _settle(window, pending) {
        const now = copyOf(window.frameGeometry);
        const isRefused = pending.refusal !== null && isSameRect(now, pending.refusal);
        if (FrameWriter._isDone(window, pending) || isRefused || pending.asks >= MOST_ASKS) {
            this.forget(window);
            this._settled(window);
            return;
        }
        pending.refusal = now;
        FrameWriter._ask(window, pending);
    }

    /** KWin 5 does not tell whether a window is maximized. */
    static _isDone(window, pending) {
        return isSameRect(window.frameGeometry, pending.frame) && !window.maximizeMode;
    }

    static _ask(window, pending) {
        ++pending.asks;
        // What is set here may be told at once.
        pending.isAsking = true;
        if (window.fullScreen)
            window.fullScreen = false;
        if (window.tile)
            FrameWriter._untile(window);
        // Also where it is not maximized yet, but about to be.
        window.setMaximize(false, false);
        window.frameGeometry = pending.frame;
        pending.isAsking = false;
        pending.timer.start();
    }

    /** KWin 5 takes a window for tiled after it has lost its tile: it would give it its former size at the
     *  next drag, and the tile's again when a bar comes or goes. Who is maximized is not. Besides, a client
     *  is told of this after it was told of the tile, also where the window has the right size already: so
     *  it ends with what is asked for here, however late it follows. */
    static _untile(window) {
        window.tile = null;
        window.setMaximize(true, false);
    }
}
