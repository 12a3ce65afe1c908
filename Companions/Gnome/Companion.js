
/** What is spoken here. The program speaks it too, or we say no more than this. */
const PROTOCOL = 1;

/** Sees and carries out inside the shell what the program, outside, cannot. It decides nothing, does
 *  nothing while the program does not run, and leaves nothing behind. */
class Companion {
    constructor(uuid, folder) {
        this._uuid = uuid;
        this._folder = folder;
        this._link = null;
        this._parts = null;
    }

    enable() {
        // In a session on X11 the program needs nobody. Newer shells have no such sessions.
        if (Meta.is_wayland_compositor && !Meta.is_wayland_compositor())
            return;
        this._link = new ProgramLink(this._folder.resolve_relative_path(PROGRAM).get_path(), {
            appeared: pid => this._meet(pid),
            vanished: () => this._part(),
            carryOut: command => this._carryOut(command),
        });
    }

    disable() {
        this._link?.destroy();
        this._link = null;
    }

    /** The program is there: looks at the displays, and greets it once they are known. */
    _meet(pid) {
        this._pid = pid;
        this._displays = new Displays(displays => {
            if (this._parts)
                this._tell('Displays', {displays});
            else
                this._greet(displays);
        });
    }

    /** The program is gone, or we go. */
    _part() {
        this._displays.destroy();
        this._displays = null;
        this._stopWatching();
    }

    _stopWatching() {
        this._signals?.disconnectAll();
        for (const part of this._parts ?? [])
            part.destroy();
        this._parts = null;
    }

    /** Waits without a limit: the program has its name before it has its windows. */
    _greet(displays) {
        this._watch();
        const {pointer, keys} = readPointer();
        const hello = {
            protocol: PROTOCOL, shell: Config.PACKAGE_VERSION, displays, focus: this._focus(), pointer, keys,
            reducedMotion: this._motion.isReduced,
        };
        this._link.callWithoutLimit('Hello', hello, answer => {
            const isUnderstood = answer !== null && (answer.protocol ?? PROTOCOL) === PROTOCOL;
            if (!isUnderstood) {
                this._stopWatching();
                return;
            }
            this._outbox.open();
            this._link.listen();
        });
    }

    _watch() {
        this._outbox = new Outbox(this._link);
        this._overlay = new Overlay();
        this._item = new BarItem(this._uuid, this._folder, () => this._tellClick());
        this._drag = new DragWatch(this._pid, this._outbox, () => this._overlay.hide());
        this._frames = new FrameWriter(window => this._tellSettled(window));
        this._windows = new OwnWindows(this._pid, {
            itemPlace: () => this._item.place,
            panelAwaited: () => this._tell('PanelAwaited', {}),
            pressedOutside: overview => this._tell('PressOutside', {overview}),
        });
        this._told = new ToldWindows(this._outbox);
        this._motion = new MotionWish(reduced => this._tell('MotionWish', {reduced}));
        this._parts = [this._drag, this._windows, this._frames, this._item, this._overlay, this._told, this._motion,
            this._outbox];
        this._signals = new Signals();
        this._signals.connect(global.display, 'notify::focus-window', () => this._tell('Focus', {focus: this._focus()}));
        this._signals.connect(global.display, 'grab-op-begin', (_display, window) => this._grabbed(window));
    }

    _grabbed(window) {
        // The user's hand is on it now: what was asked for before is void.
        this._frames.forget(window);
        if (this._drag.window)
            this._told.add(window);
    }

    _tell(method, body) {
        this._outbox.put(method, body);
    }

    _tellSettled(window) {
        const id = window.get_id();
        this._outbox.put('FrameSettled', {window: id, frame: numbersOf(window.get_frame_rect())}, `FrameSettled ${id}`);
    }

    /** A finger leaves the pointer where it is, maybe on another display. */
    _tellClick() {
        this._tell('ItemClicked',
            {item: numbersOf(this._item.place), pointer: touchedPlace() ?? readPointer().pointer});
    }

    _tellPointer() {
        const {pointer, keys} = readPointer();
        this._tell('Pointer', {pointer, keys});
    }

    _focus() {
        const window = windowInFront();
        if (window)
            this._told.add(window);
        return window ? describeWindow(window, this._pid) : null;
    }

    /** Does as told; throws where it makes no sense. What is not known is left undone. */
    _carryOut(command) {
        switch (command.c) {
        case 'overlay':
            // An answer that comes after the drag's end would show what nobody takes away.
            if (this._drag.window)
                this._overlay.show(command);
            break;
        case 'overlayGone':
            this._overlay.hide();
            break;
        case 'frame':
            this._setFrame(command);
            break;
        case 'item':
            this._item.update(command);
            break;
        case 'panel':
            this._windows.setPanel(command);
            break;
        case 'front':
            this._windows.bringToFront(textOf(command.title));
            break;
        case 'pointer':
            this._tellPointer();
            break;
        }
    }

    _setFrame(command) {
        const frame = rectOf(command.frame);
        if (frame.width < 1 || frame.height < 1)
            throw new TypeError('a frame of no size');
        const window = managedWindows().find(candidate => candidate.get_id() === command.window);
        // The user's hand is on the one that is dragged: it was asked for before that.
        if (window && window !== this._drag.window)
            this._frames.write(window, frame);
    }
}
