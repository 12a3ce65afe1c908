/** The effects that show the keys, in the order of the keys' bits. */
const KEY_EFFECTS = ['shift', 'control', 'alt', 'meta'].map(key => `tilewright_key_${key}`);

/** The modifier keys that KWin 6 tells the program itself. */
class NoKeys {
    constructor() {
        this.bits = 0;
    }

    load(done) {
        done(false);
    }

    read(done) {
        done();
    }

    settle(done) {
        done();
    }

    unload() {}
}

/** The modifier keys of KWin 5, which nobody tells but its effects: each of ours is active while its key is
 *  down and a window is moved. */
class EffectKeys {
    constructor() {
        this.bits = 0;
        this._waiting = [];
    }

    /** `done(isThere)`: whether KWin has found all of them. */
    load(done) {
        for (const name of KEY_EFFECTS)
            EffectKeys._call('loadEffect', name);
        EffectKeys._list('loadedEffects', names => done(KEY_EFFECTS.every(name => names.indexOf(name) >= 0)));
    }

    unload() {
        for (const name of KEY_EFFECTS)
            EffectKeys._call('unloadEffect', name);
    }

    /** Waits for a question that is on its way. */
    settle(done) {
        if (this._waiting.length > 0)
            this._waiting.push(done);
        else
            done();
    }

    /** Brings `bits` up to date. */
    read(done) {
        this._waiting.push(done);
        if (this._waiting.length > 1)
            return;
        EffectKeys._list('activeEffects', names => {
            this.bits = KEY_EFFECTS.reduce((bits, name, i) => bits | (names.indexOf(name) >= 0 ? 1 << i : 0), 0);
            const waiting = this._waiting;
            this._waiting = [];
            waiting.forEach(then => then());
        });
    }

    static _call(method, name) {
        callKWin('/Effects', 'org.kde.kwin.Effects', method, [name], () => {});
    }

    static _list(property, then) {
        callKWin('/Effects', 'org.freedesktop.DBus.Properties', 'Get', ['org.kde.kwin.Effects', property], then);
    }
}
