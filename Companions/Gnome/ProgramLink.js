
const BUS_NAME = 'org.tilewright.Companion';
const OBJECT_PATH = '/org/tilewright/Companion';
const INTERFACE = 'org.tilewright.Companion1';

/** Answers that come later than this, in milliseconds, are waited for no longer. */
const PATIENCE = 1000;

/** For so long, in milliseconds, a late answer still counts for what it says of how things are to look. */
const LAST_CALL = 60 * 1000;

/** The commands that count late, too. The program takes them for carried out, and says nothing more until
 *  something changes. */
const COUNT_LATE = ['overlay', 'overlayGone', 'item', 'panel'];

/** What the bus takes for "without a limit". */
const NO_TIME_LIMIT = 0x7fffffff;

/** How large an answer may be, in bytes, and how many commands are taken from it. */
const LARGEST_ANSWER = 64 * 1024;
const MOST_COMMANDS = 32;

/** How often in a second the program may answer the long poll before it has to wait for the next one. */
const MOST_ANSWERS_A_SECOND = 100;
const SECOND = 1000;

/** The program at the other end of the session bus. It is known by its name there and believed by its
 *  executable; all calls go to the connection that was looked at, and none waits. */
class ProgramLink {
    /**
     * `executable`: the only path whose program is talked to. `appeared(pid)` and `vanished()` tell
     * of a program that is believed; `carryOut(command)` is called for each command.
     */
    constructor(executable, {appeared, vanished, carryOut}) {
        this._executable = executable;
        this._appeared = appeared;
        this._vanished = vanished;
        this._carryOut = carryOut;
        this._owner = null;
        this._cancellable = null;
        this._pause = 0;
        this._waits = new Set();
        this._watch = Gio.bus_watch_name(Gio.BusType.SESSION, BUS_NAME, Gio.BusNameWatcherFlags.NONE,
            (_connection, _name, owner) => this._verify(owner), () => this._forget());
    }

    destroy() {
        Gio.bus_unwatch_name(this._watch);
        this._forget();
    }

    /** Calls the program. `answered(answer)` gets null where there was none in time that can be used. */
    call(method, body, answered) {
        let isLate = false;
        const wait = GLib.timeout_add(GLib.PRIORITY_DEFAULT, PATIENCE, () => {
            this._waits.delete(wait);
            isLate = true;
            answered(null);
            return GLib.SOURCE_REMOVE;
        });
        this._waits.add(wait);
        this._send(method, body, LAST_CALL, answer => {
            if (isLate) {
                this._carryOutAll(answer?.do, command => COUNT_LATE.includes(command.c));
                return;
            }
            this._waits.delete(wait);
            GLib.source_remove(wait);
            this._carryOutAll(answer?.do);
            answered(answer);
        });
    }

    /** The same, however long it takes. */
    callWithoutLimit(method, body, answered) {
        this._send(method, body, NO_TIME_LIMIT, answer => {
            this._carryOutAll(answer?.do);
            answered(answer);
        });
    }

    _send(method, body, limit, answered) {
        const cancellable = this._cancellable;
        Gio.DBus.session.call(this._owner, OBJECT_PATH, INTERFACE, method,
            new GLib.Variant('(s)', [JSON.stringify(body)]), new GLib.VariantType('(s)'),
            Gio.DBusCallFlags.NO_AUTO_START, limit, cancellable, (connection, result) => {
                const answer = ProgramLink._answerOf(connection, result);
                if (!cancellable.is_cancelled())
                    answered(answer);
            });
    }

    /** Stands in a call for commands that arise without one of ours, from now on. */
    listen() {
        this._secondBegan = 0;
        this._answers = 0;
        this._poll();
    }

    _poll() {
        this.callWithoutLimit('NextCommand', {}, answer => this._pollAgain(answer !== null));
    }

    _pollAgain(isAnswered) {
        const now = GLib.get_monotonic_time() / 1000;
        if (now - this._secondBegan >= SECOND) {
            this._secondBegan = now;
            this._answers = 0;
        }
        if (isAnswered && ++this._answers <= MOST_ANSWERS_A_SECOND) {
            this._poll();
            return;
        }
        // A program that floods, or that only fails, is not to keep the shell busy.
        this._pause = GLib.timeout_add(GLib.PRIORITY_DEFAULT, SECOND, () => {
            this._pause = 0;
            this._poll();
            return GLib.SOURCE_REMOVE;
        });
    }

    _carryOutAll(commands, counts = () => true) {
        if (!Array.isArray(commands))
            return;
        for (const command of commands.slice(0, MOST_COMMANDS)) {
            try {
                if (counts(command))
                    this._carryOut(command);
            } catch (error) {
                console.debug(`Tilewright: a command that cannot be carried out: ${error.message}`);
            }
        }
    }

    _verify(owner) {
        this._forget();
        const cancellable = new Gio.Cancellable();
        this._cancellable = cancellable;
        Gio.DBus.session.call('org.freedesktop.DBus', '/org/freedesktop/DBus', 'org.freedesktop.DBus',
            'GetConnectionCredentials', new GLib.Variant('(s)', [owner]), new GLib.VariantType('(a{sv})'),
            Gio.DBusCallFlags.NONE, NO_TIME_LIMIT, cancellable, (connection, result) => {
                const pid = ProgramLink._processOf(connection, result);
                if (pid > 0 && !cancellable.is_cancelled())
                    this._verifyExecutable(owner, pid, cancellable);
            });
    }

    _verifyExecutable(owner, pid, cancellable) {
        const link = Gio.File.new_for_path(`/proc/${pid}/exe`);
        link.query_info_async('standard::symlink-target', Gio.FileQueryInfoFlags.NOFOLLOW_SYMLINKS,
            GLib.PRIORITY_DEFAULT, cancellable, (_link, result) => {
                const target = ProgramLink._targetOf(link, result);
                // An upgrade replaces the file below the program that runs.
                const isOurs = target === this._executable || target === `${this._executable} (deleted)`;
                if (!isOurs || cancellable.is_cancelled())
                    return;
                this._owner = owner;
                this._appeared(pid);
            });
    }

    _forget() {
        this._cancellable?.cancel();
        this._cancellable = null;
        if (this._pause)
            GLib.source_remove(this._pause);
        this._pause = 0;
        for (const wait of this._waits)
            GLib.source_remove(wait);
        this._waits.clear();
        if (this._owner === null)
            return;
        this._owner = null;
        this._vanished();
    }

    /** The answer as an object, or null. */
    static _answerOf(connection, result) {
        try {
            const reply = connection.call_finish(result);
            if (reply.get_size() > LARGEST_ANSWER)
                return null;
            const answer = JSON.parse(reply.get_child_value(0).get_string()[0]);
            return typeof answer === 'object' && !Array.isArray(answer) ? answer : null;
        } catch {
            return null;
        }
    }

    static _processOf(connection, result) {
        try {
            return connection.call_finish(result).recursiveUnpack()[0].ProcessID ?? 0;
        } catch {
            return 0;
        }
    }

    static _targetOf(link, result) {
        try {
            return link.query_info_finish(result).get_symlink_target();
        } catch {
            return null;
        }
    }
}
