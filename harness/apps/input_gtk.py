"""A page of text that tells on standard output what the user does to it, and shows the last line of its standard
input above the text. Argument: GTK's version, 3.0 or 4.0."""

import sys

import gi

for name in ("Gdk", "Gtk"):
    gi.require_version(name, sys.argv[1])
from gi.repository import Gdk, GLib, Gtk

TEXT = "mirror window pinned floating panel\n" * 60


def say(*words):
    print(*words, flush=True)


def modifiers(state):
    names = {Gdk.ModifierType.SHIFT_MASK: "shift", Gdk.ModifierType.CONTROL_MASK: "control"}
    return "".join("+" + name for mask, name in names.items() if state & mask)


def show_line(stream, _, text):
    line = stream.readline()
    text.set_text(line + TEXT)
    return bool(line)


def watch_text(view, scrolled):
    def tell_selection(*_):
        bounds = view.get_buffer().get_selection_bounds()
        if bounds:
            say("selected", repr(view.get_buffer().get_text(*bounds, False)))

    view.set_editable(False)
    view.set_monospace(True)
    view.get_buffer().set_text(TEXT)
    view.get_buffer().connect("mark-set", tell_selection)
    GLib.io_add_watch(sys.stdin, GLib.IO_IN, show_line, view.get_buffer())
    scrolled.get_vadjustment().connect("value-changed", lambda bar: say("scrolled", int(bar.get_value())))


def with_button(scrolled):
    button = Gtk.Button(label="Press", halign=Gtk.Align.START, valign=Gtk.Align.END, margin_start=30,
                        margin_bottom=30, width_request=120, height_request=30)
    button.connect("clicked", lambda _: say("pressed"))
    overlay = Gtk.Overlay()
    overlay.add_overlay(button)
    (overlay.add if sys.argv[1] == "3.0" else overlay.set_child)(scrolled)
    return overlay


def run_gtk3():
    names = {Gdk.EventType._2BUTTON_PRESS: "double", Gdk.EventType._3BUTTON_PRESS: "triple"}
    window = Gtk.Window(title="target", default_width=480, default_height=320)
    scrolled = Gtk.ScrolledWindow()
    view = Gtk.TextView()
    menu = Gtk.Menu()
    item = Gtk.MenuItem(label="A single item")
    menu.append(item)
    menu.show_all()
    item.connect("activate", lambda _: say("item"))

    def pressed(_, event):
        say(names.get(event.type, "down") + str(event.button) + modifiers(event.state))
        if event.button == 3 and event.type == Gdk.EventType.BUTTON_PRESS:
            menu.popup_at_pointer(event)
            return True
        return False

    def moved(_, event):
        if event.state & Gdk.ModifierType.BUTTON1_MASK:
            say("motion")
        return False

    view.connect("button-press-event", pressed)
    view.connect("button-release-event", lambda _, event: say("up" + str(event.button)))
    view.connect("motion-notify-event", moved)
    watch_text(view, scrolled)
    scrolled.add(view)
    window.add(with_button(scrolled))
    window.connect("destroy", Gtk.main_quit)
    window.show_all()
    Gtk.main()


def run_gtk4():
    Gtk.init()
    loop = GLib.MainLoop()
    window = Gtk.Window(title="target", default_width=480, default_height=320)
    scrolled = Gtk.ScrolledWindow()
    view = Gtk.TextView()
    button = Gtk.Button(label="A single item")
    popover = Gtk.Popover(child=button, has_arrow=False)
    popover.set_parent(view)
    button.connect("clicked", lambda _: (say("item"), popover.popdown()))

    def pressed(gesture, count, x, y):
        which = gesture.get_current_button()
        name = {1: "down", 2: "double"}.get(count, "triple")
        say(name + str(which) + modifiers(gesture.get_current_event_state()))
        if which == 3:
            gesture.set_state(Gtk.EventSequenceState.CLAIMED)
            place = Gdk.Rectangle()
            place.x, place.y, place.width, place.height = int(x), int(y), 1, 1
            popover.set_pointing_to(place)
            popover.popup()

    def moved(controller, *_):
        if controller.get_current_event_state() & Gdk.ModifierType.BUTTON1_MASK:
            say("motion")

    clicks = Gtk.GestureClick(button=0, propagation_phase=Gtk.PropagationPhase.CAPTURE)
    clicks.connect("pressed", pressed)
    clicks.connect("released", lambda gesture, *_: say("up" + str(gesture.get_current_button())))
    motion = Gtk.EventControllerMotion(propagation_phase=Gtk.PropagationPhase.CAPTURE)
    motion.connect("motion", moved)
    view.add_controller(clicks)
    view.add_controller(motion)
    watch_text(view, scrolled)
    scrolled.set_child(view)
    window.set_child(with_button(scrolled))
    window.connect("close-request", lambda _: loop.quit())
    window.present()
    loop.run()


run_gtk3() if sys.argv[1] == "3.0" else run_gtk4()
