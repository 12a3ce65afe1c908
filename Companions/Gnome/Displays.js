
/** How the shell says that its stage is in physical pixels. */
const PHYSICAL_LAYOUT = 2;

/** The displays as the shell has them, whenever something about them has changed and come to rest. */
class Displays {
    /** `changed(list)` is called with the first list and with every further one that differs. */
    constructor(changed) {
        this._changed = changed;
        this._told = null;
        this._idle = 0;
        this._cancellable = null;
        this._signals = new Signals();
        // Work areas are old ones in the first signal of several: the last of a turn counts.
        this._signals.connect(global.display, 'workareas-changed', () => this._readSoon());
        this._signals.connect(Main.layoutManager, 'monitors-changed', () => this._readSoon());
        this._signals.connect(Main.layoutManager, 'startup-complete', () => this._readSoon());
        this._read();
    }

    destroy() {
        this._signals.disconnectAll();
        this._cancellable.cancel();
        if (this._idle)
            GLib.source_remove(this._idle);
        this._idle = 0;
    }

    _readSoon() {
        if (this._idle)
            return;
        this._idle = GLib.idle_add(GLib.PRIORITY_DEFAULT_IDLE, () => {
            this._idle = 0;
            this._read();
            return GLib.SOURCE_REMOVE;
        });
    }

    /** The shell itself answers, in a later turn of the loop that this one belongs to. */
    _read() {
        this._cancellable?.cancel();
        const cancellable = new Gio.Cancellable();
        this._cancellable = cancellable;
        Gio.DBus.session.call('org.gnome.Mutter.DisplayConfig', '/org/gnome/Mutter/DisplayConfig',
            'org.gnome.Mutter.DisplayConfig', 'GetCurrentState', null, null,
            Gio.DBusCallFlags.NO_AUTO_START, -1, cancellable, (connection, result) => {
                const facts = Displays._factsOf(connection, result);
                if (!cancellable.is_cancelled())
                    this._tell(Main.layoutManager.monitors.map(monitor => Displays._describe(monitor, facts)));
            });
    }

    _tell(list) {
        const text = JSON.stringify(list);
        if (text === this._told)
            return;
        this._told = text;
        this._changed(list);
    }

    static _describe(monitor, facts) {
        const {scale = 1, unit = 1, identity = []} = facts.get(`${monitor.x},${monitor.y}`) ?? {};
        const [connector = '', vendor = '', product = '', serial = ''] = identity;
        return {
            primary: monitor.index === Main.layoutManager.primaryIndex,
            frame: numbersOf(monitor),
            work: numbersOf(Main.layoutManager.getWorkAreaForMonitor(monitor.index)),
            scale, unit, connector, vendor, product, serial,
        };
    }

    /** What the monitors are, by their top-left corners; nothing where that cannot be known. */
    static _factsOf(connection, result) {
        const facts = new Map();
        try {
            const state = connection.call_finish(result);
            const properties = state.get_child_value(3).recursiveUnpack();
            const isPhysical = properties['layout-mode'] === PHYSICAL_LAYOUT;
            for (const [x, y, scale, , , identities] of state.get_child_value(2).recursiveUnpack())
                facts.set(`${x},${y}`, {scale, unit: isPhysical ? scale : 1, identity: identities[0]});
        } catch (error) {
            console.debug(`Tilewright: the shell does not tell its monitors: ${error.message}`);
        }
        return facts;
    }
}
