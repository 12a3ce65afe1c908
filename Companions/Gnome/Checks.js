
// What comes over the bus is believed in nothing: every number is looked at before it is used, and
// no text is used for anything but to be compared or read out.

/** No stage and no window comes near it, and what is drawn stays within what can be drawn. */
const LARGEST_LENGTH = 32767;

/** How many characters of a name are read out at most. */
const LONGEST_NAME = 64;

/** The number, if it is one between the two; throws otherwise. */
function numberWithin(value, low, high) {
    if (typeof value !== 'number' || !(value >= low && value <= high))
        throw new TypeError('a number out of its bounds');
    return value;
}

/** The elements, if there are exactly so many; throws otherwise. */
function arrayOf(value, length) {
    if (!Array.isArray(value) || value.length !== length)
        throw new TypeError('an array of another length');
    return value;
}

/** A text that is to be compared with another; throws where it is none. */
function textOf(value) {
    if (typeof value !== 'string')
        throw new TypeError('no text');
    return value;
}

/** `[x, y, width, height]` in whole stage units. Edges are rounded, never sizes: what touches goes on
 *  touching. */
function rectOf(value) {
    const [left, top, width, height] =
        arrayOf(value, 4).map(number => numberWithin(number, -LARGEST_LENGTH, LARGEST_LENGTH));
    if (width < 0 || height < 0)
        throw new TypeError('a rectangle of less than nothing');
    const x = Math.round(left);
    const y = Math.round(top);
    return {x, y, width: Math.round(left + width) - x, height: Math.round(top + height) - y};
}

/** `[x, y]` in whole stage units. */
function pointOf(value) {
    const [x, y] = arrayOf(value, 2).map(number => Math.round(numberWithin(number, -LARGEST_LENGTH, LARGEST_LENGTH)));
    return {x, y};
}

/** A rectangle as it goes over the bus. */
function numbersOf({x, y, width, height}) {
    return [x, y, width, height];
}

function isSameRect(one, other) {
    return one.x === other.x && one.y === other.y && one.width === other.width && one.height === other.height;
}

function isInRect(x, y, rect) {
    return x >= rect.x && y >= rect.y && x < rect.x + rect.width && y < rect.y + rect.height;
}
