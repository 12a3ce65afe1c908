// Tilewright's companion inside KWin: it sees and carries out what the program, outside, cannot. It
// decides nothing, does nothing between one drag and the next, and goes with the program. Made for
// every KWin from 5.27 on, whose engine knows less than the later ones. The program hands it to KWin
// with one more line at the end, which starts it.

/** What KWin 5 calls otherwise than 6, and does not have. */
const kwin5 = {
    windows: () => workspace.clientList(),
    added: workspace.clientAdded,
    removed: workspace.clientRemoved,
    activated: workspace.clientActivated,
    active: () => workspace.activeClient,
    activate: window => {
        workspace.activeClient = window;
    },
    started: window => window.clientStartUserMovedResized,
    stepped: (window, then) => window.clientStepUserMovedResized.connect((_window, frame) => then(frame)),
    finished: window => window.clientFinishUserMovedResized,
    displaysChanged: [workspace.numberScreensChanged, workspace.screenResized, workspace.virtualScreenGeometryChanged],
    displays: () => {
        const displays = [];
        for (let i = 0; i < workspace.numScreens; ++i)
            displays.push({output: i, isPrimary: i === 0, geometry: workspace.clientArea(KWin.ScreenArea, i, workspace.currentDesktop)});
        return displays;
    },
};

const kwin6 = {
    windows: () => workspace.windowList(),
    added: workspace.windowAdded,
    removed: workspace.windowRemoved,
    activated: workspace.windowActivated,
    active: () => workspace.activeWindow,
    activate: window => {
        workspace.activeWindow = window;
    },
    started: window => window.interactiveMoveResizeStarted,
    stepped: (window, then) => window.interactiveMoveResizeStepped.connect(then),
    finished: window => window.interactiveMoveResizeFinished,
    // The order is the user's own, the primary display first; the list has the order in which they came.
    displaysChanged: [workspace.screensChanged, workspace.virtualScreenGeometryChanged, workspace.screenOrderChanged],
    displays: () => workspace.screens.map(output => ({
        output,
        isPrimary: output === workspace.screenOrder[0],
        geometry: output.geometry,
        scale: output.devicePixelRatio,
        connector: output.name,
        vendor: output.manufacturer,
        product: output.model,
        serial: output.serialNumber,
    })),
};

const isOfKWin6 = typeof workspace.windowList === 'function';
const kwin = isOfKWin6 ? kwin6 : kwin5;

/** A rectangle as it goes over the bus. */
function numbersOf({x, y, width, height}) {
    return [x, y, width, height];
}

function rectOf([x, y, width, height]) {
    return {x, y, width, height};
}

/** KWin's own ones go on changing. */
function copyOf({x, y, width, height}) {
    return {x, y, width, height};
}

/** Sizes are made whole device pixels on the way. */
function isSameRect(one, other) {
    return ['x', 'y', 'width', 'height'].every(side => Math.abs(one[side] - other[side]) < 1);
}

function pointer() {
    return [workspace.cursorPos.x, workspace.cursorPos.y];
}

/** Of a Wayland window the kernel says whose it is; an X11 window only claims it, and is never believed. */
function isX11Window(window) {
    return String(window).indexOf('X11') >= 0;
}

/** A number of the window's own, from the first half of its random name. */
function idOf(window) {
    return parseInt(String(window.internalId).replace(/[{}-]/g, '').slice(0, 12), 16);
}

/** A window that the user works in: no bar, no menu, not the desktop. */
function isOrdinary(window) {
    return window.normalWindow || window.dialog || window.utility;
}

function later(milliseconds, then) {
    const timer = new QTimer();
    timer.singleShot = true;
    timer.interval = milliseconds;
    timer.timeout.connect(then);
    return timer;
}

/** Calls KWin itself, as from outside. */
function callKWin(path, interfaceName, method, args, then) {
    callDBus('org.kde.KWin', path, interfaceName, method, ...args, then);
}

/** KWin does what it calls itself for at once, by no bus: the name is still that of the script which
 *  calls this, and not of one that has taken its place. */
function unload(name) {
    callKWin('/Scripting', 'org.kde.kwin.Scripting', 'unloadScript', [name], () => {});
}
