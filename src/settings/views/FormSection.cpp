#include "settings/views/FormSection.h"

#include <QBoxLayout>
#include <QPainter>

namespace skylet {

namespace {

constexpr double rowMarginX = 0.7;
constexpr double rowMarginY = 0.5;
constexpr double captionGap = 0.25;
constexpr double controlGap = 1.0;
constexpr double headerGap = 0.4;
constexpr double boxRadius = 0.5;

QBoxLayout* columnIn(QWidget& widget) {
    auto* column = new QVBoxLayout(&widget);
    column->setContentsMargins(FormStyle::lines(rowMarginX), FormStyle::lines(rowMarginY),
                               FormStyle::lines(rowMarginX), FormStyle::lines(rowMarginY));
    column->setSpacing(FormStyle::lines(captionGap));
    return column;
}

} // namespace

FormRow::FormRow(const QString& title, QWidget* control, const QString& caption, QWidget* named, int overhang)
    : named_(named != nullptr ? named : control)
    , caption_(new ToneLabel({}, ToneLabel::Size::caption, FormStyle::Tone::secondary)) {
    auto* column = columnIn(*this);
    auto* line = new QHBoxLayout;
    line->setSpacing(FormStyle::lines(controlGap));
    QMargins margins = column->contentsMargins();
    margins.setRight(margins.right() - overhang);
    column->setContentsMargins(margins);
    auto* label = new ToneLabel(title, ToneLabel::Size::body, FormStyle::Tone::primary);
    label->setBuddy(named_); // for screen readers, to which a picker's name is its value
    line->addWidget(label, 1);
    line->addWidget(control, 0, Qt::AlignVCenter);
    column->addLayout(line);
    column->addWidget(caption_);
    named_->setAccessibleName(title);
    setCaption(caption);
}

void FormRow::setCaption(const QString& caption) {
    caption_->setText(caption);
    caption_->setVisible(!caption.isEmpty());
    named_->setAccessibleDescription(caption);
}

HintRow::HintRow(const QString& text) {
    columnIn(*this)->addWidget(new ToneLabel(text, ToneLabel::Size::caption, FormStyle::Tone::secondary));
}

// Draws the ground and a hairline over each shown row but the first.
class FormSection::Box : public QWidget {
  public:
    Box() : column_(new QVBoxLayout(this)) {
        column_->setContentsMargins(1, 1, 1, 1);
        column_->setSpacing(1);
    }
    void add(QWidget* row) { column_->addWidget(row); }

  protected:
    void paintEvent(QPaintEvent* /*event*/) override {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        const QColor hairline = FormStyle::hairlineColor(palette());
        const double radius = FormStyle::lines(boxRadius);
        painter.setPen(hairline);
        painter.setBrush(FormStyle::boxColor(palette()));
        painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), radius, radius);
        painter.setRenderHint(QPainter::Antialiasing, false);
        const int inset = FormStyle::lines(rowMarginX);
        bool isFirst = true;
        for (int i = 0; i < column_->count(); ++i) {
            const QWidget* row = column_->itemAt(i)->widget();
            if (row == nullptr || row->isHidden()) {
                continue;
            }
            if (!isFirst) {
                painter.fillRect(QRect(inset, row->y() - 1, width() - 2 * inset, 1), hairline);
            }
            isFirst = false;
        }
    }

  private:
    QBoxLayout* column_;
};

FormSection::FormSection(const QString& header) : box_(new Box) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(FormStyle::lines(headerGap));
    auto* title =
        new ToneLabel(header, ToneLabel::Size::header, FormStyle::Tone::primary, ToneLabel::Ground::window);
    title->setContentsMargins(FormStyle::lines(rowMarginX), 0, FormStyle::lines(rowMarginX), 0);
    column->addWidget(title);
    column->addWidget(box_);
    setAccessibleName(header);
}

void FormSection::addRow(QWidget* row) {
    box_->add(row);
}

} // namespace skylet
