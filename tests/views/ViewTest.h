// What the tests of the windows share: looking at a window as a user does, and typing into it.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QComboBox>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QWidget>

#include <algorithm>
#include <string>
#include <vector>

namespace skylet::test {

// Runs what is queued, layouts included.
inline void settle() {
    for (int i = 0; i < 5; ++i) {
        QApplication::sendPostedEvents();
        QApplication::processEvents();
    }
}

inline QString wordsOf(const QWidget& widget) {
    if (const auto* label = qobject_cast<const QLabel*>(&widget)) {
        return label->text();
    }
    if (const auto* box = qobject_cast<const QComboBox*>(&widget)) {
        return box->currentText();
    }
    const auto* button = qobject_cast<const QPushButton*>(&widget);
    return button != nullptr ? button->text() : QString();
}

// Everything that can be read in the window, from the top to the bottom, then from left to right.
inline std::vector<std::string> textsOf(const QWidget& window) {
    std::vector<const QWidget*> shown;
    for (const QWidget* widget : window.findChildren<QWidget*>()) {
        if (widget->isVisibleTo(&window) && !wordsOf(*widget).isEmpty()) {
            shown.push_back(widget);
        }
    }
    std::ranges::stable_sort(shown, [&](const QWidget* a, const QWidget* b) {
        const QPoint first = a->mapTo(&window, a->rect().center());
        const QPoint second = b->mapTo(&window, b->rect().center());
        // Parts of one line need not be centred to the pixel.
        return std::abs(first.y() - second.y()) > 4 ? first.y() < second.y() : first.x() < second.x();
    });
    std::vector<std::string> texts;
    texts.reserve(shown.size());
    for (const QWidget* widget : shown) {
        texts.push_back(wordsOf(*widget).toStdString());
    }
    return texts;
}

template <class T>
T* named(const QWidget& window, const char* accessibleName) {
    for (T* widget : window.findChildren<T*>()) {
        if (widget->accessibleName() == QString::fromUtf8(accessibleName)) {
            return widget;
        }
    }
    return nullptr;
}

inline QAbstractButton* buttonWith(const QWidget& window, const char* text) {
    for (auto* button : window.findChildren<QPushButton*>()) {
        if (button->text() == QString::fromUtf8(text) && button->isVisibleTo(&window)) {
            return button;
        }
    }
    return nullptr;
}

// Presses and releases a key as the window system delivers it: as a shortcut first.
inline void type(QWidget& window, int key, Qt::KeyboardModifiers modifiers = Qt::NoModifier,
                 quint32 scanCode = 0, quint32 nativeModifiers = 0) {
    const auto target = [&window] {
        return window.focusWidget() != nullptr ? window.focusWidget() : &window;
    };
    for (const auto kind : {QEvent::ShortcutOverride, QEvent::KeyPress, QEvent::KeyRelease}) {
        QKeyEvent event(kind, key, modifiers, scanCode, 0, nativeModifiers);
        event.setAccepted(kind != QEvent::ShortcutOverride);
        QApplication::sendEvent(target(), &event);
    }
    settle();
}

} // namespace skylet::test
