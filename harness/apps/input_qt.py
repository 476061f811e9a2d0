"""A page of text that tells on standard output what the user does to it, and shows the last line of its standard
input above the text. Argument: Qt's version, 5 or 6."""

import sys

if sys.argv[1] == "5":
    from PyQt5 import QtCore, QtWidgets
else:
    from PyQt6 import QtCore, QtWidgets

Qt = QtCore.Qt
BUTTONS = {Qt.MouseButton.LeftButton: 1, Qt.MouseButton.MiddleButton: 2, Qt.MouseButton.RightButton: 3}


TEXT = "mirror window pinned floating panel\n" * 60


def say(*words):
    print(*words, flush=True)


def told(name, event):
    text = name + str(BUTTONS.get(event.button(), 0))
    if event.modifiers() & Qt.KeyboardModifier.ShiftModifier:
        text += "+shift"
    if event.modifiers() & Qt.KeyboardModifier.ControlModifier:
        text += "+control"
    say(text)


class Page(QtWidgets.QPlainTextEdit):
    def __init__(self):
        super().__init__(TEXT)
        self.setReadOnly(True)
        self.setWindowTitle("target")
        self.resize(480, 320)
        self.menu = QtWidgets.QMenu(self)
        self.menu.addAction("A single item").triggered.connect(lambda: say("item"))
        button = QtWidgets.QPushButton("Press", self)
        button.setGeometry(30, 260, 120, 30)
        button.clicked.connect(lambda: say("pressed"))
        self.selectionChanged.connect(self.tell_selection)
        self.verticalScrollBar().valueChanged.connect(lambda value: say("scrolled", value))

    def tell_selection(self):
        if self.textCursor().hasSelection():
            say("selected", repr(self.textCursor().selectedText()))

    def mousePressEvent(self, event):
        told("down", event)
        super().mousePressEvent(event)

    def mouseDoubleClickEvent(self, event):
        told("double", event)
        super().mouseDoubleClickEvent(event)

    def mouseReleaseEvent(self, event):
        told("up", event)
        super().mouseReleaseEvent(event)

    def mouseMoveEvent(self, event):
        if event.buttons() & Qt.MouseButton.LeftButton:
            say("motion")
        super().mouseMoveEvent(event)

    def contextMenuEvent(self, event):
        self.menu.popup(event.globalPos())


application = QtWidgets.QApplication(sys.argv[:1])
page = Page()
page.show()
lines = QtCore.QSocketNotifier(sys.stdin.fileno(), QtCore.QSocketNotifier.Type.Read)
lines.activated.connect(lambda *_: page.setPlainText(sys.stdin.readline() + TEXT))
sys.exit(application.exec())
