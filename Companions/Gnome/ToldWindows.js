
/** The windows that the program has been told of: says which of them go. */
class ToldWindows {
    constructor(outbox) {
        this._outbox = outbox;
        this._windows = new Map();
    }

    destroy() {
        for (const signals of this._windows.values())
            signals.disconnectAll();
        this._windows.clear();
    }

    add(window) {
        if (this._windows.has(window))
            return;
        const id = window.get_id();
        const signals = new Signals();
        signals.connect(window, 'unmanaged', () => {
            signals.disconnectAll();
            this._windows.delete(window);
            this._outbox.put('Gone', {window: id}, `Gone ${id}`);
        });
        this._windows.set(window, signals);
    }
}
