
/** The icons that the button can bear, each a file in the companion's own folder. */
const ICONS = ['tilewright-symbolic', 'tilewright-awake-symbolic'];

/** The program's button in the shell's top bar. */
class BarItem {
    /** `clicked()`: by mouse, touch or keyboard. */
    constructor(uuid, folder, clicked) {
        this._uuid = uuid;
        this._folder = folder;
        this._clicked = clicked;
        this._container = null;
        this._button = null;
    }

    destroy() {
        this._container?.destroy();
        this._container = null;
        this._button = null;
    }

    /** Shows it so, or takes it away. */
    update(command) {
        if (command.shown !== true) {
            this.destroy();
            return;
        }
        const icon = textOf(command.icon);
        if (!ICONS.includes(icon))
            throw new TypeError('an icon that there is not');
        const name = textOf(command.name).slice(0, LONGEST_NAME);
        if (!this._button)
            this._build();
        this._button.child.gicon = new Gio.FileIcon({file: this._folder.get_child('icons').get_child(`${icon}.svg`)});
        this._button.accessible_name = name;
    }

    /** Where it is on the stage; null while it is not shown. */
    get place() {
        if (!this._button)
            return null;
        const [x, y] = this._button.get_transformed_position();
        const [width, height] = this._button.get_transformed_size();
        return rectOf([x, y, width, height]);
    }

    _build() {
        this._button = new St.Button({
            style_class: 'panel-button',
            style: 'padding: 0 6px;',
            can_focus: true,
            x_expand: true,
            y_expand: true,
            button_mask: St.ButtonMask.ONE | St.ButtonMask.TWO | St.ButtonMask.THREE,
            child: new St.Icon({style_class: 'system-status-icon'}),
        });
        this._button.connect('clicked', () => this._clicked());
        // What shells make of a press on their own kind of button differs from version to version:
        // the bar gets one without a menu that takes no input, and ours lies in it.
        this._container = new PanelMenu.Button(0.5, null, true);
        this._container.set({reactive: false, can_focus: false, track_hover: false});
        this._container.remove_style_class_name('panel-button');
        this._container.set_style('-natural-hpadding: 0; -minimum-hpadding: 0;');
        this._container.add_child(this._button);
        Main.panel.addToStatusArea(this._uuid, this._container);
    }
}
