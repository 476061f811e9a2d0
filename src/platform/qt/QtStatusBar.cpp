#include "platform/qt/QtStatusBar.h"

#include "platform/qt/MenuPopup.h"
#include "platform/qt/StatusImageDrawing.h"
#include "platform/qt/StatusNotifierItem.h"
#include "platform/qt/TrayIcon.h"

#include <QApplication>
#include <QCursor>
#include <QEvent>

#include <utility>

namespace skylet::platform::qt {

namespace {

class QtStatusItem : public StatusItem {
  public:
    QtStatusItem(StatusHosts& hosts, int number, const StatusBar::MenuSource& menu)
        : hosts_(hosts)
        , number_(number)
        , menu_(menu)
        , popup_(std::make_shared<MenuPopup>(menu))
        , hostsObserver_(hosts.changed.add([this] { moveToHost(); }))
        , appearanceObserver_(hosts.appearanceChanged.add([this] { showImage(); })) {
        moveToHost();
    }

    void setImage(const StatusImage& image) override {
        if (image_ != image) {
            image_ = image;
            showImage();
        }
    }
    void setToolTip(const std::string& text) override {
        toolTip_ = QString::fromStdString(text);
        showToolTip();
    }
    void noteMenuChange() override {
        if (notifier_) {
            notifier_->noteMenuChange();
        }
    }

  private:
    void moveToHost() {
        const auto state = hosts_.watcher().state();
        if (state == StatusNotifierWatcher::State::host) {
            tray_.reset();
            if (!notifier_) {
                notifier_ = std::make_unique<StatusNotifierItem>(
                    hosts_.bus, hosts_.mainQueue, number_, menu_, [popup = std::weak_ptr(popup_)] {
                        if (const auto open = popup.lock()) {
                            open->toggle(QRect(QCursor::pos(), QSize(1, 1)));
                        }
                    });
            }
        } else if (state == StatusNotifierWatcher::State::noHost) {
            notifier_.reset();
            if (!tray_ && hosts_.canUseTray()) {
                tray_ = std::make_unique<TrayIcon>(*popup_);
            }
        }
        showImage();
        showToolTip();
        if (notifier_) {
            hosts_.watcher().registerItem(notifier_->service());
        }
    }
    void showImage() {
        if (notifier_) {
            notifier_->setImage(image_, isDarkAppearance());
        }
        if (tray_) {
            tray_->setImage(image_);
        }
    }
    void showToolTip() {
        if (notifier_) {
            notifier_->setToolTip(toolTip_);
        }
        if (tray_) {
            tray_->setToolTip(toolTip_);
        }
    }

    StatusHosts& hosts_;
    int number_;
    StatusBar::MenuSource menu_;
    std::shared_ptr<MenuPopup> popup_;
    StatusImage image_;
    QString toolTip_;
    std::unique_ptr<StatusNotifierItem> notifier_;
    std::unique_ptr<TrayIcon> tray_;
    Subscription hostsObserver_;
    Subscription appearanceObserver_;
};

} // namespace

StatusHosts::StatusHosts(const QDBusConnection& sessionBus, MainQueue& queue)
    : bus(sessionBus)
    , mainQueue(queue)
    , hadBus_(sessionBus.isConnected())
    , watcher_(sessionBus, [this] {
        // Decided as soon as it can be, whether or not there is an item yet.
        if (watcher_.state() == StatusNotifierWatcher::State::noHost) {
            canUseTray();
        }
        changed.notify();
    }) {}

bool StatusHosts::canUseTray() {
    if (!isTrayDecided_ && bus.isConnected() == hadBus_) {
        QSystemTrayIcon::isSystemTrayAvailable();
        isTrayDecided_ = true;
    }
    return isTrayDecided_;
}

QtStatusBar::QtStatusBar(const QDBusConnection& sessionBus, MainQueue& mainQueue)
    : hosts_(sessionBus, mainQueue) {
    QCoreApplication::instance()->installEventFilter(this);
}

QtStatusBar::~QtStatusBar() = default;

double QtStatusBar::thickness() const {
    return statusBarThickness;
}

Size QtStatusBar::symbolSize(const Symbol& symbol) const {
    return symbolSizeOf(symbol);
}

bool QtStatusBar::isShown() const {
    return hosts_.watcher().state() != StatusNotifierWatcher::State::noHost ||
           (hosts_.canUseTray() && QSystemTrayIcon::isSystemTrayAvailable());
}

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem(const std::string& /*autosaveName*/,
                                                        MenuSource menu) {
    return std::make_unique<QtStatusItem>(hosts_, ++items_, menu);
}

bool QtStatusBar::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange && object == QCoreApplication::instance()) {
        hosts_.appearanceChanged.notify();
    }
    return false;
}

} // namespace skylet::platform::qt
