/** After so many milliseconds without an answer to the beginning of a drag, it is asked whether the
 *  program is still there. */
const PATIENCE = 3000;

/** KWin does not say whether the keyboard is to move a window, which then follows the pointer with no
 *  button down. But it brings the pointer to the window's very middle first; a hand hardly ever does. */
function isForKeyboard(window) {
    const {x, y, width, height} = window.frameGeometry;
    const [left, top] = pointer();
    return Math.abs(left - x - width / 2) <= 1 && Math.abs(top - y - height / 2) <= 1;
}

/** Reports windows being moved by the pointer. */
class DragWatch {
    /** `events`: `began(window)`, from when on the user's hand is on it; `dropped(window, commands)`;
     *  `abandoned()` when there is no program any longer to be told. */
    constructor(program, keys, events) {
        this._program = program;
        this._keys = keys;
        this._events = events;
        this._serial = 0;
        this._drag = null;
        this._patience = later(PATIENCE, () => program.whenGone(() => events.abandoned()));
        this._ending = later(0, () => this._ended());
        workspace.cursorPosChanged.connect(() => this._moved());
    }

    watch(window) {
        kwin.started(window).connect(() => this._start(window));
        kwin.stepped(window, frame => {
            if (this._drag && this._drag.window === window)
                this._drag.last = copyOf(frame);
        });
        kwin.finished(window).connect(() => this._finish(window));
    }

    /** A window that is gone is dragged no more. */
    gone(window) {
        if (this._drag && idOf(this._drag.window) === idOf(window))
            this._end(true);
    }

    _start(window) {
        if (window.resize || isForKeyboard(window))
            return;
        const frame = copyOf(window.frameGeometry);
        this._drag = {window, serial: ++this._serial, start: frame, last: frame, sent: 0, isTelling: false, hasNews: false};
        this._keys.bits = 0;
        this._events.began(window);
        this._patience.start();
        this._program.tell('DragBegin', this._state(), () => this._patience.stop());
    }

    /** One call at a time, the newest state next. Of an answer that never comes nobody hears. */
    _moved() {
        const drag = this._drag;
        if (!drag || drag.end)
            return;
        drag.hasNews = true;
        if (drag.isTelling && Date.now() - drag.sent < LATEST_ANSWER)
            return;
        drag.isTelling = true;
        drag.hasNews = false;
        drag.sent = Date.now();
        this._keys.read(() => {
            if (this._drag !== drag || drag.end)
                return;
            this._program.tell('DragMotion', this._state(), () => {
                drag.isTelling = false;
                if (this._drag === drag && drag.hasNews)
                    this._moved();
            });
        });
    }

    /** After Escape the window is back where it was although it had moved: KWin 5 puts it there right
     *  after it has said that the move is over. */
    _finish(window) {
        if (!this._drag || this._drag.window !== window)
            return;
        this._drag.end = pointer();
        // With the next motion they would be gone.
        this._keys.read(() => {});
        this._ending.start();
    }

    _ended() {
        if (!this._drag)
            return;
        const {window, start, last} = this._drag;
        const frame = copyOf(window.frameGeometry);
        this._end(isSameRect(frame, start) && !isSameRect(last, start));
    }

    _end(cancelled) {
        const {window} = this._drag;
        const body = Object.assign(this._state(), {cancelled});
        this._drag = null;
        this._keys.settle(() => {
            body.keys = this._keys.bits;
            this._program.tell('DragEnd', body, commands => this._events.dropped(window, commands));
        });
    }

    _state() {
        const {window, serial, end} = this._drag;
        return {drag: serial, window: this._program.describe(window), pointer: end || pointer(), keys: this._keys.bits};
    }
}
