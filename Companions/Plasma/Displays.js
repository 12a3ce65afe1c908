/** The displays, and what of them is free of bars. */
class Displays {
    /** `changed()` is called when anything about them may be different. */
    constructor(changed) {
        this._told = '';
        for (const signal of kwin.displaysChanged)
            signal.connect(changed);
    }

    static read() {
        return kwin.displays().map(({output, isPrimary, geometry, scale = 1, connector = '', vendor = '', product = '', serial = ''}) => ({
            primary: isPrimary,
            frame: numbersOf(geometry),
            work: numbersOf(workspace.clientArea(KWin.MaximizeArea, output, workspace.currentDesktop)),
            scale,
            unit: 1,
            connector,
            vendor,
            product,
            serial,
        }));
    }

    /** They, if they are others than those that were taken last; else null. */
    takeNews() {
        const displays = Displays.read();
        const text = JSON.stringify(displays);
        if (text === this._told)
            return null;
        this._told = text;
        return displays;
    }
}
