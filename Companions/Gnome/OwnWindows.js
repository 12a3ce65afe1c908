
/** The program's own windows: its panel, which it cannot place itself, and those that it wants in front. */
class OwnWindows {
    /**
     * `itemPlace()`: where the item is; `panelAwaited()`: the panel's window may come;
     * `pressedOutside(isOverview)`: while the panel is shown.
     */
    constructor(programPid, {itemPlace, panelAwaited, pressedOutside}) {
        this._programPid = programPid;
        this._itemPlace = itemPlace;
        this._panelAwaited = panelAwaited;
        this._pressedOutside = pressedOutside;
        this._panel = null;
        this._frontTitle = null;
        this._windows = new Map();
        this._dressed = new Set();
        this._panelSignals = new Signals();
        this._signals = new Signals();
        this._signals.connect(global.display, 'window-created', (_display, window) => this._adopt(window));
        this._signals.connect(global.window_manager, 'map', (_manager, actor) => this._mapped(actor.meta_window));
        managedWindows().forEach(window => this._adopt(window));
    }

    destroy() {
        this._signals.disconnectAll();
        this._panelSignals.disconnectAll();
        for (const window of [...this._windows.keys()])
            this._release(window);
    }

    /** Says how the panel's window is recognised and where it belongs, or that it goes. */
    setPanel(command) {
        this._panelSignals.disconnectAll();
        this._panel = null;
        if (command.shown !== true)
            return;
        // An older program tells none: its panel stays where the shell puts it.
        this._panel = {title: textOf(command.title), corner: command.corner ? pointOf(command.corner) : null};
        this._panelSignals.connect(global.stage, 'captured-event', (_stage, event) => this._lookAt(event));
        this._panelSignals.connect(Main.overview, 'showing', () => this._pressedOutside(true));
        for (const window of this._windows.keys()) {
            if (this._isPanel(window) && window.get_compositor_private()?.visible)
                this._dress(window);
        }
        this._panelAwaited();
    }

    /** Brings the window of that title to the front with the focus, now or as soon as it shows. */
    bringToFront(title) {
        const window = [...this._windows.keys()].find(own => own.get_title() === title);
        this._frontTitle = window ? null : title;
        if (window)
            Main.activateWindow(window);
    }

    _adopt(window) {
        if (this._windows.has(window) || !isWindowOf(window, this._programPid))
            return;
        const signals = new Signals();
        // A window has no title yet when it is created, and has one when it is mapped.
        signals.connect(window, 'notify::title', () => this._named(window));
        signals.connect(window, 'size-changed', () => this._place(window));
        signals.connect(window, 'unmanaging', () => {
            this._dressed.delete(window);
            this._release(window);
        });
        this._windows.set(window, signals);
    }

    _release(window) {
        this._windows.get(window).disconnectAll();
        this._windows.delete(window);
        if (this._dressed.delete(window))
            OwnWindows._undress(window);
    }

    _isPanel(window) {
        return this._panel !== null && window.get_title() === this._panel.title;
    }

    _named(window) {
        const actor = window.get_compositor_private();
        if (this._isPanel(window) && actor && !actor.visible)
            Main.wm.skipNextEffect(actor);
    }

    _mapped(window) {
        if (!this._windows.has(window))
            return;
        if (this._isPanel(window)) {
            this._dress(window);
        } else if (this._frontTitle !== null && window.get_title() === this._frontTitle) {
            this._frontTitle = null;
            Main.activateWindow(window);
        }
    }

    /** Makes the panel of a window: above others, on every workspace, in no list, with the focus. Not
     *  before it is mapped: the shell's stack does not know it earlier. */
    _dress(window) {
        if (!this._dressed.has(window)) {
            this._dressed.add(window);
            window.make_above();
            window.stick();
            // Older shells offer nothing, but look at this property.
            if (window.hide_from_window_list)
                window.hide_from_window_list();
            else
                Object.defineProperty(window, 'skip_taskbar', {get: () => true, configurable: true});
        }
        this._place(window);
        Main.activateWindow(window);
        // Opened from the overview: newer shells leave the keys to what has them there.
        global.stage.set_key_focus(null);
    }

    static _undress(window) {
        window.unmake_above();
        window.unstick();
        if (window.show_in_window_list)
            window.show_in_window_list();
        else
            delete window.skip_taskbar;
    }

    /** Again with each new size: the shell scales a window that comes to a display of another scale. */
    _place(window) {
        if (this._isPanel(window) && this._dressed.has(window) && this._panel.corner)
            window.move_frame(false, this._panel.corner.x, this._panel.corner.y);
    }

    /** A press on nothing takes the focus from nobody: the program would not hear of it. */
    _lookAt(event) {
        const type = event.type();
        if (type === Clutter.EventType.BUTTON_PRESS || type === Clutter.EventType.TOUCH_BEGIN) {
            const [x, y] = event.get_coords();
            const item = this._itemPlace();
            const isOnItem = item !== null && isInRect(x, y, item);
            if (!isOnItem && !this._isInPanel(x, y))
                this._pressedOutside(false);
        }
        return Clutter.EVENT_PROPAGATE;
    }

    /** Within the panel, or what has popped up from it. */
    _isInPanel(x, y) {
        return [...this._windows.keys()].some(window => isInRect(x, y, window.get_frame_rect()) &&
            (this._isPanel(window) || this._isPopupOfPanel(window)));
    }

    _isPopupOfPanel(window) {
        const parent = window.get_transient_for();
        return parent !== null && (this._isPanel(parent) || this._isPopupOfPanel(parent));
    }
}
