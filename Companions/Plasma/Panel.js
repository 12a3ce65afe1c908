/** How far the panel keeps from its anchor and from the work area's edges. */
const GAP = 4;

/** The program's panel, which it cannot place itself. */
class Panel {
    constructor(window, {margins, area, anchor}) {
        this._window = window;
        this._margins = margins;
        this._area = rectOf(area);
        this._anchor = rectOf(anchor);
        window.skipTaskbar = true;
        window.skipPager = true;
        window.skipSwitcher = true;
        window.keepAbove = true;
        window.onAllDesktops = true;
        this._place();
        window.frameGeometryChanged.connect(() => this._followSize());
        kwin.activate(window);
    }

    /** Only its size: where displays have changed another one of these places it, too, which knows better. */
    _followSize() {
        const {width, height} = this._window.frameGeometry;
        if (width !== this._width || height !== this._height)
            this._place();
    }

    /** Below its anchor, the item or a point, or above it in the lower half, centred on it, within the work
     *  area. What counts is the panel's ground; its shadow may lie anywhere. */
    _place() {
        const [left, top, right, bottom] = this._margins;
        const {_anchor: anchor, _area: area} = this;
        const frame = this._window.frameGeometry;
        this._width = frame.width;
        this._height = frame.height;
        const width = frame.width - left - right;
        const height = frame.height - top - bottom;
        const isInUpperHalf = anchor.y + anchor.height / 2 <= area.y + area.height / 2;
        const inside = (start, length, low, high) => Math.max(Math.min(start, high - GAP - length), low + GAP);
        const x = Math.round(inside(anchor.x + (anchor.width - width) / 2, width, area.x, area.x + area.width) - left);
        const y = Math.round(inside(isInUpperHalf ? anchor.y + anchor.height + GAP : anchor.y - GAP - height,
            height, area.y, area.y + area.height) - top);
        if (x !== frame.x || y !== frame.y)
            this._window.frameGeometry = {x, y, width: frame.width, height: frame.height};
    }
}
