
/** Whether the user wishes for less motion, as the desktop's settings have it. What the shell itself
 *  leaves out for want of speed is no wish. */
class MotionWish {
    /** `changed(isReduced)` is called with every change. */
    constructor(changed) {
        this._settings = new Gio.Settings({schema_id: 'org.gnome.desktop.interface'});
        this._signals = new Signals();
        this._signals.connect(this._settings, 'changed::enable-animations', () => changed(this.isReduced));
    }

    destroy() {
        this._signals.disconnectAll();
    }

    get isReduced() {
        return !this._settings.get_boolean('enable-animations');
    }
}
