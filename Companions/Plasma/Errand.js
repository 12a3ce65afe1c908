/** How long, in milliseconds, a window is waited for that is to be placed or brought to the front. */
const LONGEST_WAIT = 10000;

/** Carries out what the program wants at another time than at a drop, and goes. */
class Errand {
    constructor(address, pid, name) {
        this._program = new Program(address, pid, () => unload(this._name));
        this._name = name;
        /** What is not done yet. */
        this._open = 0;
        this._frames = new FrameWriter(window => {
            this._program.tell('FrameSettled', {window: idOf(window), frame: numbersOf(window.frameGeometry)});
            this._goIfDone();
        });
        /** Kept, since nobody else does. */
        this._timers = [];
        kwin.removed.connect(window => {
            this._frames.lose(window);
            this._goIfDone();
        });
    }

    run(commands) {
        commands.forEach(command => this._carryOut(command));
        this._goIfDone();
    }

    _carryOut(command) {
        switch (command.c) {
        case 'frame':
            kwin.windows().filter(window => idOf(window) === command.window && !window.move)
                .forEach(window => this._frames.write(window, rectOf(command.frame)));
            break;
        case 'panel':
            if (command.shown) {
                this._whenThere(command.title, window => makePanel(window, command.corner));
                this._program.tell('PanelAwaited', {});
            }
            break;
        case 'front':
            this._whenThere(command.title, window => kwin.activate(window));
            break;
        case 'pointer':
            this._program.tell('Pointer', {pointer: pointer(), keys: 0});
            break;
        }
    }

    /** Does so with the program's window of that title, now or in the moment that it is there. */
    _whenThere(title, then) {
        // KWin numbers windows of the same title.
        const isIt = window => String(window.caption).replace(/ <\d+>\u200e?$/, '') === title && this._program.owns(window);
        const [there] = kwin.windows().filter(isIt);
        if (there) {
            then(there);
            return;
        }
        ++this._open;
        let isWaiting = true;
        const stop = () => {
            isWaiting = false;
            this._close();
        };
        const patience = later(LONGEST_WAIT, () => isWaiting && stop());
        this._timers.push(patience);
        patience.start();
        kwin.added.connect(window => {
            if (!isWaiting || !isIt(window))
                return;
            then(window);
            stop();
        });
    }

    _close() {
        --this._open;
        this._goIfDone();
    }

    _goIfDone() {
        if (this._open === 0 && this._frames.isIdle)
            unload(this._name);
    }
}
