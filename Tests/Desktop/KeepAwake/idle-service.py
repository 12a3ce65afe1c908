#!/usr/bin/python3
"""A stand-in for a desktop's idle-inhibit service, whose answers a test chooses.

At /test it tells what it was asked: Held(), Asked() and Granted() are numbers, the last two in all
so far; Last() is the last call's arguments as text.
"""

import argparse
import os
import sys

from gi.repository import Gio, GLib

COOKIE = "<arg type='u' direction='out'/>"
KINDS = {
    "cookie": "<method name='Inhibit'><arg type='s' direction='in'/><arg type='s' direction='in'/>"
              + COOKIE + "</method><method name='UnInhibit'><arg type='u' direction='in'/></method>",
    "manager": "<method name='Inhibit'><arg type='s' direction='in'/><arg type='u' direction='in'/>"
               "<arg type='s' direction='in'/><arg type='u' direction='in'/>" + COOKIE +
               "</method><method name='Uninhibit'><arg type='u' direction='in'/></method>",
    "portal": "<method name='Inhibit'><arg type='s' direction='in'/><arg type='u' direction='in'/>"
              "<arg type='a{sv}' direction='in'/><arg type='o' direction='out'/></method>",
    "login": "<method name='Inhibit'><arg type='s' direction='in'/><arg type='s' direction='in'/>"
             "<arg type='s' direction='in'/><arg type='s' direction='in'/>"
             "<arg type='h' direction='out'/></method>",
}
REQUEST = ("<node><interface name='org.freedesktop.portal.Request'><method name='Close'/>"
           "</interface></node>")
QUERIES = ("<node><interface name='test.IdleService'>"
           "<method name='Held'><arg type='u' direction='out'/></method>"
           "<method name='Asked'><arg type='u' direction='out'/></method>"
           "<method name='Granted'><arg type='u' direction='out'/></method>"
           "<method name='Last'><arg type='s' direction='out'/></method></interface></node>")

parser = argparse.ArgumentParser()
parser.add_argument("--name", required=True)
parser.add_argument("--path", required=True)
parser.add_argument("--interface", required=True)
parser.add_argument("--kind", choices=KINDS, default="cookie")
parser.add_argument("--delay", type=int, default=0, help="milliseconds before each answer")
parser.add_argument("--refuse", action="store_true")
parser.add_argument("--object-late", type=int, default=0,
                    help="milliseconds from taking the name to having the object")
options = parser.parse_args()


class IdleService:
    def __init__(self, bus):
        self.bus = bus
        self.held = {}
        self.asked = 0
        self.granted = 0
        self.last = ""
        if options.object_late:
            GLib.timeout_add(options.object_late, self.appear)
        else:
            self.appear()
        self.register("/test", QUERIES, self.queried)

    def appear(self):
        self.register(options.path, "<node><interface name='%s'>%s</interface></node>" % (
            options.interface, KINDS[options.kind]), self.called)
        return GLib.SOURCE_REMOVE

    def register(self, path, xml, handler):
        info = Gio.DBusNodeInfo.new_for_xml(xml).interfaces[0]
        return self.bus.register_object(path, info, handler, None, None)

    def queried(self, bus, sender, path, interface, method, parameters, invocation):
        if method == "Last":
            invocation.return_value(GLib.Variant("(s)", (self.last,)))
        else:
            number = {"Held": len(self.held), "Asked": self.asked, "Granted": self.granted}[method]
            invocation.return_value(GLib.Variant("(u)", (number,)))

    def called(self, bus, sender, path, interface, method, parameters, invocation):
        if method != "Inhibit":
            self.held.pop(parameters.unpack()[0], None)
            invocation.return_value(None)
            return
        self.asked += 1
        self.last = parameters.print_(False)
        GLib.timeout_add(options.delay, self.answer, sender, parameters, invocation)

    def answer(self, sender, parameters, invocation):
        if options.kind == "portal":
            self.answer_as_portal(sender, parameters.unpack()[2], invocation)
        elif options.refuse:
            invocation.return_dbus_error("org.freedesktop.DBus.Error.AccessDenied", "no")
        elif options.kind == "login":
            self.answer_with_descriptor(invocation)
        else:
            self.grant(self.asked, sender)
            invocation.return_value(GLib.Variant("(u)", (self.asked,)))
        return GLib.SOURCE_REMOVE

    def grant(self, key, holder):
        self.granted += 1
        self.held[key] = holder

    def answer_with_descriptor(self, invocation):
        ours, theirs = os.pipe()
        key = ("descriptor", self.asked)
        self.grant(key, None)
        GLib.unix_fd_add_full(0, ours, GLib.IOCondition.HUP, self.closed, key)
        descriptors = Gio.UnixFDList.new_from_array([theirs])
        invocation.return_value_with_unix_fd_list(GLib.Variant("(h)", (0,)), descriptors)

    def closed(self, descriptor, condition, key):
        os.close(descriptor)
        self.held.pop(key, None)
        return GLib.SOURCE_REMOVE

    def answer_as_portal(self, sender, details, invocation):
        handle = "/org/freedesktop/portal/desktop/request/%s/%s" % (
            sender[1:].replace(".", "_"), details["handle_token"])
        if not options.refuse:
            self.grant(handle, sender)

        def close(bus, caller, path, interface, method, parameters, call):
            self.held.pop(handle, None)
            self.bus.unregister_object(registration)
            call.return_value(None)

        registration = self.register(handle, REQUEST, close)
        invocation.return_value(GLib.Variant("(o)", (handle,)))
        self.bus.emit_signal(sender, handle, "org.freedesktop.portal.Request", "Response",
                             GLib.Variant("(ua{sv})", (2 if options.refuse else 0, {})))


def owner_changed(bus, sender, path, interface, signal, parameters, service):
    name, _, new_owner = parameters.unpack()
    if not new_owner:
        service.held = {key: value for key, value in service.held.items() if value != name}


bus = Gio.bus_get_sync(Gio.BusType.SESSION, None)
service = IdleService(bus)
bus.signal_subscribe("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged",
                     "/org/freedesktop/DBus", None, Gio.DBusSignalFlags.NONE, owner_changed, service)
loop = GLib.MainLoop()
Gio.bus_own_name_on_connection(bus, options.name, Gio.BusNameOwnerFlags.NONE, None,
                               lambda *_: sys.exit(1))
loop.run()
