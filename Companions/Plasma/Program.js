/** An answer that takes longer, in milliseconds, comes from a program that was stopped meanwhile: it is
 *  about something that has long been over. */
const LATEST_ANSWER = 1000;

/** How many characters an answer may have, and how many commands are taken from it. */
const LARGEST_ANSWER = 64 * 1024;
const MOST_COMMANDS = 32;

/** The program: whose, and how it is talked to. */
class Program {
    /** `failed()` is called when it is in no state to be talked to any longer. */
    constructor(address, pid, failed) {
        this._address = address;
        this._pid = pid;
        this._failed = failed;
    }

    /** `answered(commands)` is called if an answer comes, and not too late. An error is none. */
    tell(method, body, answered = () => {}) {
        const told = Date.now();
        callDBus(this._address, '/org/tilewright/Companion', 'org.tilewright.Companion1', method, JSON.stringify(body),
            text => {
                if (text.length > LARGEST_ANSWER)
                    this._failed();
                else if (Date.now() - told <= LATEST_ANSWER)
                    answered((JSON.parse(text).do || []).slice(0, MOST_COMMANDS));
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
