// Tilewright's companion in GNOME Shell 43 and 44. Those read __init__.js before extension.js, newer
// ones know nothing of it: both forms live in one folder.

'use strict';

const {Clutter, Gio, GLib, Meta, St} = imports.gi;

const Config = imports.misc.config;
const Main = imports.ui.main;
const PanelMenu = imports.ui.panelMenu;
