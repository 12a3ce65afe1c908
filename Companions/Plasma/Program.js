/** An answer that takes longer, in milliseconds, comes from a program that was stopped meanwhile: it is
 *  about something that has long been over. */
const LATEST_ANSWER = 1000;

/** The program: whose, and how it is talked to. */
class Program {
    constructor(address, pid) {
        this._address = address;
        this._pid = pid;
    }

    /** `answered(answer)` is called if an answer comes, and not too late. An error is none. */
    tell(method, body, answered = () => {}) {
        const told = Date.now();
        callDBus(this._address, '/org/tilewright/Companion', 'org.tilewright.Companion1', method, JSON.stringify(body),
            text => {
                if (Date.now() - told <= LATEST_ANSWER)
                    answered(JSON.parse(text));
            });
    }

    whenGone(then) {
        callDBus('org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus', 'NameHasOwner', this._address,
            isThere => {
                if (!isThere)
                    then();
            });
    }

    owns(window) {
        return window.pid === this._pid && !isX11Window(window);
    }

    /** A window as it goes over the bus. */
    describe(window) {
        return {
            id: idOf(window),
            pid: window.pid,
            x11: isX11Window(window),
            ours: this.owns(window),
            frame: numbersOf(window.frameGeometry),
        };
    }
}
