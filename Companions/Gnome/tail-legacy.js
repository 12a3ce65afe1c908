
/** What the shell switches on and off with the session. */
class TilewrightExtension {
    constructor(me) {
        this._me = me;
        this._companion = null;
    }

    enable() {
        this._companion = new Companion(this._me.uuid, this._me.dir);
        this._companion.enable();
    }

    disable() {
        this._companion?.disable();
        this._companion = null;
    }
}

/** Stands in for the script `extension`, which this shell looks for in here first. */
var extension = {
    init: me => new TilewrightExtension(me),
};
