
/** What is to be told to the program, in order, one call at a time. What says the same of a newer
 *  moment takes the place of what still waits: a slow program is never flooded, and a stopped one
 *  leaves next to nothing waiting. */
class Outbox {
    constructor(link) {
        this._link = link;
        this._waiting = new Map();
        this._isBusy = false;
        this._isOpen = false;
    }

    /** Tells what waits, and what comes, from now on. */
    open() {
        this._isOpen = true;
        this._sendNext();
    }

    /** Tells nothing more from now on. */
    destroy() {
        this._isOpen = false;
        this._waiting.clear();
    }

    /** `topic`: what it is about; two of one topic never wait. */
    put(method, body, topic = method) {
        this._waiting.delete(topic);
        this._waiting.set(topic, [method, body]);
        this._sendNext();
    }

    /** Drops what waits of these topics. */
    drop(...topics) {
        for (const topic of topics)
            this._waiting.delete(topic);
    }

    _sendNext() {
        if (this._isBusy || !this._isOpen)
            return;
        const [next] = this._waiting;
        if (!next)
            return;
        const [topic, [method, body]] = next;
        this._waiting.delete(topic);
        this._isBusy = true;
        this._link.call(method, body, () => {
            this._isBusy = false;
            this._sendNext();
        });
    }
}
