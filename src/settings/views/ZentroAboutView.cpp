#include "settings/views/ZentroAboutView.h"

#include "settings/views/ApplicationIcon.h"
#include "settings/views/FormButton.h"
#include "settings/views/ToneLabel.h"

#include <QPainter>
#include <QVBoxLayout>

#include <algorithm>
#include <utility>

namespace skylet {

namespace {

constexpr int spacing = 12;
constexpr int padding = 24;
constexpr int fixedWidth = 300;
constexpr double leastLines = 15; // the width at large font sizes
constexpr int iconSize = 64;
constexpr int dividerPadding = 40;
constexpr int textSpacing = 4;
constexpr const char* fallbackVersion = "1.0";

ToneLabel* centred(const QString& text, ToneLabel::Size size, FormStyle::Tone tone) {
    auto* label = new ToneLabel(text, size, tone, ToneLabel::Ground::window);
    label->setAlignment(Qt::AlignHCenter);
    return label;
}

// Lines of about the same length instead of a last one of one word.
void balance(ToneLabel& label, int width) {
    const int height = label.heightForWidth(width);
    while (width > 1 && label.heightForWidth(width - 1) == height) {
        --width;
    }
    label.setFixedWidth(width);
}

class Divider : public QWidget {
  public:
    Divider() { setFixedHeight(1); }

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter(this).fillRect(rect(), FormStyle::hairlineColor(palette()));
    }
};

} // namespace

ZentroAboutView::ZentroAboutView(const QString& appName, const BundleInfo& bundle,
                                 std::function<void()> close) {
    setFixedWidth(std::max(fixedWidth, FormStyle::lines(leastLines)));
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(padding, padding, padding, padding);
    column->setSpacing(spacing);

    auto* icon = new QLabel;
    icon->setPixmap(applicationIcon().pixmap(QSize(iconSize, iconSize), devicePixelRatioF()));
    icon->setAlignment(Qt::AlignHCenter);
    icon->setAccessibleName(appName);
    column->addWidget(icon);
    column->addWidget(centred(appName, ToneLabel::Size::title, FormStyle::Tone::primary));
    column->addWidget(centred(FormStyle::text("Versione ") +
                                  QString::fromStdString(bundle.shortVersion.value_or(fallbackVersion)),
                              ToneLabel::Size::caption, FormStyle::Tone::secondary));

    auto* divider = new QHBoxLayout;
    divider->setContentsMargins(dividerPadding, 0, dividerPadding, 0);
    divider->addWidget(new Divider);
    column->addLayout(divider);

    auto* texts = new QVBoxLayout;
    texts->setSpacing(textSpacing);
    texts->addWidget(centred(FormStyle::text("Realizzato per Corvane"), ToneLabel::Size::mediumCaption,
                             FormStyle::Tone::primary));
    auto* tagline = centred(FormStyle::text("Una finestra flottante ridimensionabile per le tue app."),
                            ToneLabel::Size::caption, FormStyle::Tone::secondary);
    balance(*tagline, width() - 2 * padding);
    texts->addWidget(tagline, 0, Qt::AlignHCenter);
    column->addLayout(texts);

    auto* button = new FormButton(FormStyle::text("Chiudi"));
    QObject::connect(button, &QAbstractButton::clicked, button, [close = std::move(close)] { close(); });
    column->addWidget(button, 0, Qt::AlignHCenter);
}

} // namespace skylet
