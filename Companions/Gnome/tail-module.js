
/** What the shell switches on and off with the session. */
export default class TilewrightExtension extends Extension {
    enable() {
        this._companion = new Companion(this.uuid, this.dir);
        this._companion.enable();
    }

    disable() {
        this._companion?.disable();
        this._companion = null;
    }
}
