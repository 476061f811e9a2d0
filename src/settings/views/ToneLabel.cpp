#include "settings/views/ToneLabel.h"

#include <QApplication>
#include <QEvent>

namespace skylet {

namespace {

QFont fontOf(ToneLabel::Size size) {
    switch (size) {
    case ToneLabel::Size::body:
        return QApplication::font();
    case ToneLabel::Size::caption:
        return FormStyle::captionFont();
    case ToneLabel::Size::mediumCaption: {
        QFont font = FormStyle::captionFont();
        font.setWeight(QFont::Medium);
        return font;
    }
    case ToneLabel::Size::header:
        return FormStyle::headerFont();
    case ToneLabel::Size::title:
        return FormStyle::titleFont();
    }
    return {};
}

} // namespace

ToneLabel::ToneLabel(const QString& text, Size size, FormStyle::Tone tone, Ground ground)
    : QLabel(text)
    , size_(size)
    , tone_(tone)
    , ground_(ground) {
    setTextFormat(Qt::PlainText);
    setWordWrap(true);
    restyle();
}

void ToneLabel::setTone(FormStyle::Tone tone) {
    tone_ = tone;
    restyle();
}

void ToneLabel::changeEvent(QEvent* event) {
    QLabel::changeEvent(event);
    switch (event->type()) {
    case QEvent::PaletteChange:
    case QEvent::ApplicationPaletteChange:
    case QEvent::ApplicationFontChange:
    case QEvent::FontChange:
    case QEvent::StyleChange:
    case QEvent::ParentChange:
        restyle();
        break;
    default:
        break;
    }
}

// Restyling sends the very events that ask for it.
void ToneLabel::restyle() {
    if (isRestyling_) {
        return;
    }
    isRestyling_ = true;
    setFont(fontOf(size_));
    const QPalette around = parentWidget() != nullptr ? parentWidget()->palette() : QApplication::palette();
    const QColor ground =
        ground_ == Ground::box ? FormStyle::boxColor(around) : around.color(QPalette::Window);
    QPalette own = around;
    own.setColor(QPalette::WindowText, FormStyle::textColor(around, tone_, ground));
    setPalette(own);
    isRestyling_ = false;
}

} // namespace skylet
