#include "settings/views/FormButton.h"

#include "settings/views/FormStyle.h"

#include <QApplication>
#include <QEvent>

#include <algorithm>

namespace skylet {

namespace {

constexpr double paddingX = 1.7;     // lines, both sides together
constexpr double leastWidth = 4.5;   // lines
constexpr double leastHeight = 1.65; // lines of the button's own font

} // namespace

FormButton::FormButton(const QString& text, Size size) : QPushButton(text), size_(size) {
    setAutoDefault(true);
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    restyle();
}

QSize FormButton::sizeHint() const {
    const int words = fontMetrics().horizontalAdvance(text());
    const int height = static_cast<int>(fontMetrics().height() * leastHeight);
    return {std::max(words + FormStyle::lines(paddingX), FormStyle::lines(leastWidth)),
            std::max(QPushButton::sizeHint().height(), height)};
}

void FormButton::changeEvent(QEvent* event) {
    QPushButton::changeEvent(event);
    if (event->type() == QEvent::ApplicationFontChange) {
        restyle();
    }
}

void FormButton::restyle() {
    setFont(size_ == Size::caption ? FormStyle::captionFont() : QApplication::font());
}

} // namespace skylet
