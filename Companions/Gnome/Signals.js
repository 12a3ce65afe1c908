
/** Connections to signals, all undone together. */
class Signals {
    constructor() {
        this._connections = [];
    }

    connect(object, name, handler) {
        this._connections.push([object, object.connect(name, handler)]);
    }

    disconnectAll() {
        for (const [object, id] of this._connections.splice(0))
            object.disconnect(id);
    }
}
