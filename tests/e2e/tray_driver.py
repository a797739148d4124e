#!/usr/bin/python3
"""Reads and drives the application's StatusNotifierItem on the session bus,
as a tray host would: its tooltip, a click on the icon, and the menu over
com.canonical.dbusmenu.

  tray_driver.py ITEMS_FILE tooltip          prints the tooltip's text
  tray_driver.py ITEMS_FILE activate         a left click on the icon
  tray_driver.py ITEMS_FILE menu             prints each menu item: label, enabled, visible
  tray_driver.py ITEMS_FILE click LABEL      clicks the visible item with that label
"""
import json
import sys

import dbus

ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"


def item(record):
    with open(record, encoding="utf-8") as lines:
        entries = [json.loads(line) for line in lines if line.strip()]
    if not entries:
        sys.exit("no status notifier item is registered")
    last = entries[-1]
    bus = dbus.SessionBus()
    return bus, bus.get_object(last["service"], last["path"], introspect=False), last["service"]


def menu_items(bus, service, path):
    menu = bus.get_object(service, path, introspect=False)
    _, layout = menu.GetLayout(0, -1, dbus.Array([], signature="s"), dbus_interface=MENU)
    found = []

    def walk(node):
        identifier, properties, children = node
        if "label" in properties:
            found.append((int(identifier), str(properties["label"]).replace("&", ""),
                          bool(properties.get("enabled", True)),
                          bool(properties.get("visible", True))))
        for child in children:
            walk(child)

    walk(layout)
    return menu, found


def main():
    record, command = sys.argv[1], sys.argv[2]
    bus, proxy, service = item(record)
    properties = dbus.Interface(proxy, "org.freedesktop.DBus.Properties")
    if command == "tooltip":
        tooltip = properties.Get(ITEM, "ToolTip")
        print(str(tooltip[2]))
    elif command == "activate":
        proxy.Activate(dbus.Int32(0), dbus.Int32(0), dbus_interface=ITEM)
    elif command in ("menu", "click"):
        menu, found = menu_items(bus, service, properties.Get(ITEM, "Menu"))
        if command == "menu":
            for identifier, label, enabled, visible in found:
                print(json.dumps({"label": label, "enabled": enabled, "visible": visible},
                                 ensure_ascii=False))
            return
        wanted = sys.argv[3]
        for identifier, label, enabled, visible in found:
            if label == wanted and visible:
                menu.Event(dbus.Int32(identifier), "clicked", dbus.Int32(0, variant_level=1),
                           dbus.UInt32(0), dbus_interface=MENU)
                return
        sys.exit("no visible menu item is labelled " + wanted)
    else:
        sys.exit("unknown command " + command)


if __name__ == "__main__":
    main()
