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
    QtStatusItem(QDBusConnection bus, int number, StatusNotifierWatcher& watcher, Observers<>& hostsChanged,
                 Observers<>& appearanceChanged, const StatusBar::MenuSource& menu)
        : bus_(std::move(bus))
        , number_(number)
        , watcher_(watcher)
        , menu_(menu)
        , popup_(menu)
        , hostsObserver_(hostsChanged.add([this] { moveToHost(); }))
        , appearanceObserver_(appearanceChanged.add([this] { showImage(); })) {
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
    // A tray icon must not be made while there is a host: Qt would then take it for all times to be one of
    // the host's.
    void moveToHost() {
        if (watcher_.state() == StatusNotifierWatcher::State::host) {
            tray_.reset();
            if (!notifier_) {
                notifier_ = std::make_unique<StatusNotifierItem>(
                    bus_, number_, menu_, [this] { popup_.toggle(QRect(QCursor::pos(), QSize(1, 1))); });
            }
            showImage();
            showToolTip();
            watcher_.registerItem(notifier_->service());
        } else if (watcher_.state() == StatusNotifierWatcher::State::noHost) {
            notifier_.reset();
            if (!tray_) {
                tray_ = std::make_unique<TrayIcon>(popup_);
            }
            showImage();
            showToolTip();
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

    QDBusConnection bus_;
    int number_;
    StatusNotifierWatcher& watcher_;
    StatusBar::MenuSource menu_;
    MenuPopup popup_;
    StatusImage image_;
    QString toolTip_;
    std::unique_ptr<StatusNotifierItem> notifier_;
    std::unique_ptr<TrayIcon> tray_;
    Subscription hostsObserver_;
    Subscription appearanceObserver_;
};

} // namespace

QtStatusBar::QtStatusBar(const QDBusConnection& sessionBus)
    : bus_(sessionBus)
    , watcher_(sessionBus, [this] { hostsChanged_.notify(); }) {
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
    return watcher_.state() != StatusNotifierWatcher::State::noHost ||
           QSystemTrayIcon::isSystemTrayAvailable();
}

std::unique_ptr<StatusItem> QtStatusBar::makeStatusItem(const std::string& /*autosaveName*/,
                                                        MenuSource menu) {
    return std::make_unique<QtStatusItem>(bus_, ++items_, watcher_, hostsChanged_, appearanceChanged_, menu);
}

bool QtStatusBar::eventFilter(QObject* object, QEvent* event) {
    if (event->type() == QEvent::ApplicationPaletteChange && object == QCoreApplication::instance()) {
        appearanceChanged_.notify();
    }
    return false;
}

} // namespace skylet::platform::qt
