#include "platform/qt/QtApplication.h"

#include "platform/qt/KeyEquivalent.h"

#include <QApplication>
#include <QEvent>
#include <QWidget>

namespace skylet::platform::qt {

QtApplication::QtApplication() {
    QCoreApplication::instance()->installEventFilter(this);
}

void QtApplication::setMainMenu(const MainMenu& menu) {
    actions_.clear();
    for (const TopLevelMenu& top : menu) {
        for (const MenuItem& item : top.items) {
            const QKeySequence keys = keySequenceOf(item);
            if (!item.action || keys.isEmpty()) {
                continue;
            }
            auto action = std::make_unique<QAction>(QString::fromStdString(item.title));
            action->setShortcut(keys);
            connect(action.get(), &QAction::triggered, item.action);
            actions_.push_back(std::move(action));
        }
    }
}

void QtApplication::setAccessoryActivationPolicy() {
    QApplication::setQuitOnLastWindowClosed(false);
}

bool QtApplication::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::Show && object->isWidgetType()) {
        auto* widget = static_cast<QWidget*>(object);
        if (widget->windowType() == Qt::Window || widget->windowType() == Qt::Dialog) {
            for (const auto& action : actions_) {
                widget->addAction(action.get());
            }
        }
    }
    return false;
}

} // namespace skylet::platform::qt
