#include "settings/views/ZentroSettingsView.h"

#include "settings/views/FormButton.h"
#include "settings/views/FormSection.h"
#include "settings/views/ToggleRow.h"

#include <QEvent>
#include <QPainter>
#include <QScrollArea>
#include <QScrollBar>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace skylet {

namespace {

constexpr double preferredWidth = 40; // lines: no caption but one takes more than one and a half
constexpr double formMargin = 1.2;
constexpr double sectionGap = 1.1;
constexpr int formTopPadding = 8;
constexpr int barPaddingX = 16;
constexpr int barPaddingY = 12;

// Divides the form, which may scroll, from the bar.
class BottomBar : public QWidget {
  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(QRect(0, 0, width(), 1), FormStyle::hairlineColor(palette()));
    }
};

} // namespace

ZentroSettingsView::ZentroSettingsView(const Configuration& configuration, QWidget* appSettings,
                                       platform::LoginItem& loginItem, const BundleInfo& bundle,
                                       std::function<void()> close)
    : loginItem_(loginItem)
    , form_(new QScrollArea)
    , bottomBar_(new BottomBar) {
    auto* sections = new QWidget;
    auto* column = new QVBoxLayout(sections);
    column->setContentsMargins(FormStyle::lines(formMargin), FormStyle::lines(0.4) + formTopPadding,
                               FormStyle::lines(formMargin), FormStyle::lines(formMargin));
    column->setSpacing(FormStyle::lines(sectionGap));
    column->addWidget(appSettings);
    if (configuration.showsLaunchAtLogin) {
        auto* general = new FormSection(FormStyle::text("Generali"));
        launchAtLogin_ = new ToggleRow(FormStyle::text("Apri all’accesso"), loginItem_.isEnabled(),
                                       [this](bool isOn) { changeLaunchAtLogin(isOn); });
        general->addRow(launchAtLogin_);
        column->addWidget(general);
    }
    auto* information = new FormSection(FormStyle::text("Informazioni"));
    auto* version = new ToneLabel(QString::fromStdString(bundle.shortVersion.value_or("—")),
                                  ToneLabel::Size::body, FormStyle::Tone::secondary);
    version->setWordWrap(false);
    information->addRow(new FormRow(FormStyle::text("Versione"), version));
    version->setAccessibleName({}); // it reads as itself
    column->addWidget(information);
    column->addStretch(1);

    form_->setWidget(sections);
    sections->installEventFilter(this);
    form_->setWidgetResizable(true);
    form_->setFrameShape(QFrame::NoFrame);
    form_->setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    form_->setFocusPolicy(Qt::NoFocus);
    form_->setAccessibleName(configuration.appName);

    auto* done = new FormButton(FormStyle::text("Fine"));
    QObject::connect(done, &QAbstractButton::clicked, done, [close = std::move(close)] { close(); });
    auto* bar = new QHBoxLayout(bottomBar_);
    bar->setContentsMargins(barPaddingX, barPaddingY, barPaddingX, barPaddingY);
    bar->addStretch(1);
    bar->addWidget(done);

    auto* whole = new QVBoxLayout(this);
    whole->setContentsMargins(0, 0, 0, 0);
    whole->setSpacing(0);
    whole->addWidget(form_, 1);
    whole->addWidget(bottomBar_);
}

platform::Size ZentroSettingsView::fittingSize() const {
    const QWidget& sections = *form_->widget();
    const int width = std::max(FormStyle::lines(preferredWidth), sections.minimumSizeHint().width());
    const int height = sections.layout()->totalHeightForWidth(width) + bottomBar_->sizeHint().height();
    return {static_cast<double>(width), static_cast<double>(height)};
}

bool ZentroSettingsView::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::LayoutRequest && watched == form_->widget() && onFittingSizeChange) {
        onFittingSizeChange();
    }
    return QWidget::eventFilter(watched, event);
}

void ZentroSettingsView::scrollToTop() {
    form_->verticalScrollBar()->setValue(0);
}

void ZentroSettingsView::refresh() {
    if (launchAtLogin_ != nullptr) {
        launchAtLogin_->setOn(loginItem_.isEnabled());
    }
}

void ZentroSettingsView::changeLaunchAtLogin(bool isOn) {
    if (!(isOn ? loginItem_.registerItem() : loginItem_.unregisterItem())) {
        refresh();
    }
}

} // namespace skylet
