/** What is spoken here. The program speaks it too. */
const PROTOCOL = 1;

/** What is there for as long as the program is. */
class Companion {
    /** `name` is the script's own, among KWin's. */
    constructor(address, pid, name) {
        this._program = new Program(address, pid, () => this._end());
        this._name = name;
        this._keys = isOfKWin6 ? new NoKeys() : new EffectKeys();
        this._known = new Set();
        this._wasOurs = false;
        this._leaving = later(0, () => this._left());
        this._frames = new FrameWriter(window => this._tellSettled(window));
        this._keys.load(areThere => this._greet(areThere));
    }

    _greet(tellsKeys) {
        this._displays = new Displays(() => this._tellDisplays());
        this._drags = new DragWatch(this._program, this._keys, {
            began: window => this._began(window),
            dropped: (window, commands) => this._obey(window, commands),
            abandoned: () => this._end(),
        });
        kwin.windows().forEach(window => this._added(window));
        kwin.added.connect(window => this._added(window));
        kwin.removed.connect(window => this._removed(window));
        kwin.activated.connect(window => this._activated(window));
        this._program.tell('Hello', {
            protocol: PROTOCOL,
            shell: isOfKWin6 ? '6' : '5',
            displays: this._displays.takeNews(),
            focus: this._focus(kwin.active()),
            pointer: pointer(),
            keys: 0,
            tellsKeys,
        });
    }

    _added(window) {
        this._drags.watch(window);
        if (window.dock)
            window.frameGeometryChanged.connect(() => this._tellDisplays());
    }

    _removed(window) {
        this._frames.lose(window);
        this._drags.gone(window);
        if (this._known.delete(idOf(window)))
            this._program.tell('Gone', {window: idOf(window)});
        if (window.dock)
            this._tellDisplays();
    }

    /** The desktop and its bars have the focus now and then: the user still works in the same window. Between
     *  one window and the next KWin 5 tells of none. */
    _activated(window) {
        if (window && isOrdinary(window))
            this._program.tell('Focus', {focus: this._focus(window)});
        else if (this._wasOurs)
            this._leaving.start();
        this._wasOurs = Boolean(window) && this._program.owns(window);
    }

    _left() {
        const window = kwin.active();
        if (!window || !isOrdinary(window))
            this._program.tell('PressOutside', {overview: true});
    }

    _began(window) {
        // What was asked for before is void.
        this._frames.forget(window);
        this._known.add(idOf(window));
        // No signal tells of every change of a bar.
        this._tellDisplays();
    }

    _obey(window, commands) {
        for (const command of commands) {
            if (command.c === 'frame' && command.window === idOf(window) && !window.deleted && !window.move)
                this._frames.write(window, rectOf(command.frame));
        }
    }

    _focus(window) {
        if (!window || !isOrdinary(window))
            return null;
        this._known.add(idOf(window));
        return this._program.describe(window);
    }

    _tellDisplays() {
        const displays = this._displays.takeNews();
        if (displays)
            this._program.tell('Displays', {displays});
    }

    _tellSettled(window) {
        this._program.tell('FrameSettled', {window: idOf(window), frame: numbersOf(window.frameGeometry)});
    }

    /** A program that was killed takes nobody along, nor does one that has lost its mind. */
    _end() {
        this._keys.unload();
        unload(this._name);
    }
}
