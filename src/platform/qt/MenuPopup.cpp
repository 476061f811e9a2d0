#include "platform/qt/MenuPopup.h"

#include "platform/qt/KeyEquivalent.h"

#include <QAction>
#include <QGuiApplication>
#include <QKeyEvent>
#include <QScreen>

#include <utility>

namespace skylet::platform::qt {

namespace {

// Qt's menus show key equivalents but answer to those of a menu bar only.
class KeyMenu : public QMenu {
  protected:
    void keyPressEvent(QKeyEvent* event) override {
        const QKeySequence pressed(event->keyCombination());
        for (QAction* action : actions()) {
            if (action->isEnabled() && action->shortcut() == pressed) {
                close();
                action->trigger();
                return;
            }
        }
        QMenu::keyPressEvent(event);
    }
};

QString literalText(const std::string& title) {
    QString text = QString::fromStdString(title);
    for (QChar& character : text) {
        // A tab would set off a second column.
        if (character.category() == QChar::Other_Control) {
            character = u' ';
        }
    }
    return text.replace(u'&', QStringLiteral("&&"));
}

void addTo(QMenu& menu, MenuItem item) {
    if (item.isSeparator) {
        menu.addSeparator();
        return;
    }
    QAction* action = menu.addAction(literalText(item.title));
    action->setEnabled(item.isEnabled);
    action->setCheckable(item.isOn);
    action->setChecked(item.isOn);
    action->setShortcut(keySequenceOf(item));
    action->setShortcutVisibleInContextMenu(true);
    if (item.action) {
        QObject::connect(action, &QAction::triggered, std::move(item.action));
    }
}

} // namespace

void MenuPopup::DeleteLater::operator()(QMenu* menu) const {
    menu->hide();
    menu->deleteLater();
}

MenuPopup::MenuPopup(StatusBar::MenuSource source) : source_(std::move(source)), menu_(new KeyMenu) {}

void MenuPopup::rebuild() {
    menu_->clear();
    for (MenuItem& item : source_()) {
        addTo(*menu_, std::move(item));
    }
}

void MenuPopup::toggle(const QRect& anchor) {
    if (menu_->isVisible()) {
        menu_->hide();
        return;
    }
    rebuild();
    QPoint place(anchor.left(), anchor.bottom() + 1);
    const int height = menu_->sizeHint().height();
    const QScreen* screen = QGuiApplication::screenAt(anchor.center());
    if (screen && place.y() + height > screen->geometry().bottom() + 1) {
        place.setY(anchor.top() - height);
    }
    menu_->popup(place);
}

} // namespace skylet::platform::qt
