
/** More tiles than these are not shown. */
const MOST_TILES = 64;
const LARGEST_RADIUS = 512;
const WIDEST_BORDER = 64;
/** In milliseconds. */
const LONGEST_TRANSITION = 2000;

/** A colour of a style sheet, made of nothing but numbers. */
function colorOf(value) {
    const [red, green, blue, alpha] = arrayOf(value, 4);
    const channel = number => Math.round(numberWithin(number, 0, 255));
    return `rgba(${channel(red)},${channel(green)},${channel(blue)},${numberWithin(alpha, 0, 1).toFixed(4)})`;
}

/** The style of a rounded rectangle with a border. */
function styleOf(fill, border, borderWidth, radius, transition) {
    // Lengths in style sheets are in points where the stage is in pixels.
    const {scale_factor: scale} = St.ThemeContext.get_for_stage(global.stage);
    const length = number => `${(number / scale).toFixed(2)}px`;
    return `background-color:${fill};border:${length(borderWidth)} solid ${border};` +
        `border-radius:${length(radius)};transition-duration:${transition}ms;`;
}

/** A tile's lines as they are told, each within the one before: places in the tile, and styles. */
function linesOf(value, {width, height}, radius, borderWidth, transition) {
    let inset = borderWidth;
    return arrayOf(value, 2).map(line => {
        const [lineWidth, color] = arrayOf(line, 2);
        const start = Math.round(inset);
        inset += numberWithin(lineWidth, 0, WIDEST_BORDER);
        return {
            place: {x: start, y: start, width: Math.max(0, width - 2 * start), height: Math.max(0, height - 2 * start)},
            style: styleOf('transparent', colorOf(color), inset - start, Math.max(0, radius - start), transition),
        };
    });
}

/** A tile as it is told, checked: its place, its style and its opacity, and the lines in it. */
function tileOf(value, lines, transition) {
    const [x, y, width, height, radius, fill, border, borderWidth, opacity] = arrayOf(value, 9);
    const place = rectOf([x, y, width, height]);
    numberWithin(radius, 0, LARGEST_RADIUS);
    numberWithin(borderWidth, 0, WIDEST_BORDER);
    return {
        place,
        style: styleOf(colorOf(fill), colorOf(border), borderWidth, radius, transition),
        opacity: Math.round(numberWithin(opacity, 0, 1) * 255),
        lines: linesOf(lines, place, radius, borderWidth, transition),
    };
}

/** An actor that draws a tile, or a line in one. */
function actorFor({place, style, opacity = 255}) {
    return new St.Widget({...place, reactive: false, style, opacity});
}

/** The zones, drawn above everything on one display. The pointer goes through. */
class Overlay {
    constructor() {
        this._surface = null;
        this._area = null;
        this._tiles = [];
        this._signals = new Signals();
        this._signals.connect(Main.overview, 'showing', () => this.hide());
        // The shell's own preview of where a window would be tiled would show through our tiles.
        this._signals.connect(global.window_manager, 'show-tile-preview', () => this._hideTilePreview());
    }

    destroy() {
        this._signals.disconnectAll();
        this.hide();
    }

    /** Shows exactly these tiles. Those that stay in their places change along the transition. */
    show(command) {
        const area = rectOf(command.area);
        const transition = Math.round(numberWithin(command.transition, 0, LONGEST_TRANSITION));
        if (!Array.isArray(command.tiles) || command.tiles.length > MOST_TILES)
            throw new TypeError('no tiles, or too many');
        const lines = arrayOf(command.lines, command.tiles.length);
        const tiles = command.tiles.map((tile, index) => tileOf(tile, lines[index], transition));
        if (Main.overview.visible)
            return;
        if (this._isShownAt(area, tiles))
            this._restyle(tiles, transition);
        else
            this._build(area, tiles);
        this._hideTilePreview();
    }

    hide() {
        this._surface?.destroy();
        this._surface = null;
        this._tiles = [];
    }

    _isShownAt(area, tiles) {
        return this._surface !== null && isSameRect(area, this._area) &&
            tiles.length === this._tiles.length &&
            tiles.every((tile, index) => isSameRect(tile.place, this._tiles[index].place));
    }

    _build(area, tiles) {
        this.hide();
        this._surface = new St.Widget({...area, reactive: false, clip_to_allocation: true});
        for (const tile of tiles) {
            const actor = actorFor(tile);
            for (const line of tile.lines)
                actor.add_child(actorFor(line));
            this._surface.add_child(actor);
        }
        this._area = area;
        this._tiles = tiles;
        // Above the bar, menus and windows of the whole screen.
        Main.layoutManager.uiGroup.add_child(this._surface);
    }

    _restyle(tiles, transition) {
        tiles.forEach(({style, opacity, lines}, index) => {
            const before = this._tiles[index];
            const actor = this._surface.get_child_at_index(index);
            if (style !== before.style)
                actor.set_style(style);
            if (opacity !== before.opacity)
                actor.ease({opacity, duration: transition, mode: Clutter.AnimationMode.EASE_OUT});
            lines.forEach((line, number) => actor.get_child_at_index(number).set({...line.place, style: line.style}));
        });
        this._tiles = tiles;
    }

    _hideTilePreview() {
        // Private to the shell, and nothing that matters much.
        if (this._surface)
            Main.wm._hideTilePreview?.();
    }
}
