
// The keys as they go over the bus.
const SHIFT = 1;
const CONTROL = 2;
const OPTION = 4;
const COMMAND = 8;

/** Where the finger was whose lifting the shell deals with now; null where it deals with something else. */
function touchedPlace() {
    const event = Clutter.get_current_event();
    return event?.type() === Clutter.EventType.TOUCH_END ? event.get_coords().map(Math.round) : null;
}

/** The pointer's place, the keys held with it and whether the first button is down, as of now. */
function readPointer() {
    const [x, y, state] = global.get_pointer();
    const held = mask => (state & mask) !== 0;
    let keys = 0;
    if (held(Clutter.ModifierType.SHIFT_MASK))
        keys |= SHIFT;
    if (held(Clutter.ModifierType.CONTROL_MASK))
        keys |= CONTROL;
    if (held(Clutter.ModifierType.MOD1_MASK))
        keys |= OPTION;
    // The shell tells of this key by the modifier that it is mapped to, never by its name.
    if (held(Clutter.ModifierType.MOD4_MASK))
        keys |= COMMAND;
    return {pointer: [x, y], keys, isPressed: held(Clutter.ModifierType.BUTTON1_MASK)};
}
