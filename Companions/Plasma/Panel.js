/** Makes the program's panel of a window, which it cannot do itself, with its corner there. */
function makePanel(window, [x, y]) {
    window.skipTaskbar = true;
    window.skipPager = true;
    window.skipSwitcher = true;
    window.keepAbove = true;
    window.onAllDesktops = true;
    const {width, height} = window.frameGeometry;
    window.frameGeometry = {x, y, width, height};
    kwin.activate(window);
}
