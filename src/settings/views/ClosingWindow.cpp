#include "settings/views/ClosingWindow.h"

#include "settings/views/ApplicationIcon.h"

#include <QKeyEvent>

namespace skylet {

namespace {

// Escape, Command-period and the desktop's way of closing a window.
bool closes(const QKeyEvent& event) {
    const bool isCommandPeriod = event.key() == Qt::Key_Period && event.modifiers() == Qt::MetaModifier;
    return event.matches(QKeySequence::Cancel) || event.matches(QKeySequence::Close) || isCommandPeriod;
}

} // namespace

ClosingWindow::ClosingWindow(const QString& title)
    : QWidget(nullptr, Qt::Window | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowSystemMenuHint |
                           Qt::WindowCloseButtonHint) {
    setWindowTitle(title);
    setWindowIcon(applicationIcon());
}

void ClosingWindow::bringForward(platform::OwnWindows& ownWindows) {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    show();
    ownWindows.bringToActiveSpace(winId());
}

void ClosingWindow::keyPressEvent(QKeyEvent* event) {
    if (closes(*event)) {
        close();
    } else {
        QWidget::keyPressEvent(event);
    }
}

} // namespace skylet
