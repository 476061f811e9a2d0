"""A text document in LibreOffice that tells on standard output what the user does to it. Argument: a folder for
the program's own files."""

import os
import signal
import subprocess
import sys
import time

import uno
import unohelper
from com.sun.star.awt import XMouseClickHandler
from com.sun.star.lang import DisposedException
from com.sun.star.view import XSelectionChangeListener

FOLDER = sys.argv[1]
PIPE = "skylet-test-" + str(abs(hash(FOLDER)))
BUTTONS = {1: 1, 2: 3, 4: 2}


def say(*words):
    print(*words, flush=True)


def told(name, event):
    modifiers = "+shift" if event.Modifiers & 1 else ""
    modifiers += "+control" if event.Modifiers & 2 else ""
    say(name + str(BUTTONS.get(event.Buttons, 0)) + modifiers)


class Clicks(unohelper.Base, XMouseClickHandler):
    def mousePressed(self, event):
        told("double" if event.ClickCount == 2 else "down", event)
        return False

    def mouseReleased(self, event):
        told("up", event)
        return False

    def disposing(self, _):
        pass


class Selections(unohelper.Base, XSelectionChangeListener):
    def __init__(self, controller):
        self.controller = controller

    def selectionChanged(self, _):
        cursor = self.controller.getViewCursor()
        if not cursor.isCollapsed():
            say("selected", repr(cursor.getString()[:40]))

    def disposing(self, _):
        pass


def connect():
    local = uno.getComponentContext()
    resolver = local.ServiceManager.createInstanceWithContext("com.sun.star.bridge.UnoUrlResolver", local)
    while True:
        try:
            return resolver.resolve("uno:pipe,name=" + PIPE + ";urp;StarOffice.ComponentContext")
        except Exception:
            if office.poll() is not None:
                sys.exit("the office ended")
            time.sleep(0.05)


office = subprocess.Popen([
    "soffice", "--writer", "--nologo", "--norestore", "--nofirststartwizard", "--nolockcheck",
    "-env:UserInstallation=file://" + FOLDER, "--accept=pipe,name=" + PIPE + ";urp;"],
    start_new_session=True)
signal.signal(signal.SIGTERM, lambda *_: (os.killpg(office.pid, signal.SIGKILL), sys.exit()))
context = connect()
desktop = context.ServiceManager.createInstanceWithContext("com.sun.star.frame.Desktop", context)
# The office opens the document by itself: asked to from here, it now and then waits for itself forever.
while not (document := desktop.CurrentComponent):
    time.sleep(0.05)
document.Text.setString("mirror window pinned floating panel\n" * 200)
controller = document.CurrentController
controller.ViewSettings.ShowOnlineLayout = True
controller.Frame.Title = "target"
controller.Frame.ContainerWindow.IsMaximized = False
controller.Frame.ContainerWindow.setPosSize(100, 90, 640, 480, 15)
controller.getViewCursor().gotoStart(False)
controller.addMouseClickHandler(Clicks())
controller.addSelectionChangeListener(Selections(controller))


context.ServiceManager.createInstanceWithContext("com.sun.star.awt.Toolkit", context).processEventsToIdle()
say("ready")


def top():
    # The cursor's place, the zoom, then the left and upper edge of what can be seen.
    return int(controller.getViewData().split(";")[4])


last = top()
try:
    while True:
        time.sleep(0.05)
        now = top()
        if now != last:
            say("scrolled", now)
        last = now
except DisposedException:
    pass
