#include "settings/views/PermissionRow.h"

#include "settings/views/CheckMark.h"
#include "settings/views/FormButton.h"
#include "settings/views/FormSection.h"

#include <QHBoxLayout>

#include <utility>

namespace skylet {

namespace {

constexpr double markGap = 0.3;

} // namespace

PermissionRow::PermissionRow(ZentroPermissionWatcher& watcher, const Texts& texts,
                             std::function<void()> allow)
    : button_(new FormButton(FormStyle::text("Consenti accesso")))
    , granted_(new QWidget)
    , changes_(watcher.observeWillChange([this](bool next) { show(next); })) {
    auto* mark = new QHBoxLayout(granted_);
    mark->setContentsMargins(0, 0, 0, 0);
    mark->setSpacing(FormStyle::lines(markGap));
    mark->addWidget(new CheckMark);
    auto* word = new ToneLabel(texts.granted, ToneLabel::Size::caption, FormStyle::Tone::positive);
    word->setWordWrap(false);
    mark->addWidget(word);

    auto* state = new QWidget;
    auto* line = new QHBoxLayout(state);
    line->setContentsMargins(0, 0, 0, 0);
    line->addWidget(granted_);
    line->addWidget(button_);
    // The row keeps its height when the one takes the place of the other.
    state->setMinimumHeight(button_->sizeHint().height());

    QObject::connect(button_, &QAbstractButton::clicked, button_, [allow = std::move(allow)] { allow(); });

    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->addWidget(new FormRow(texts.title, state, texts.explanation));
    button_->setAccessibleName(button_->text() + QStringLiteral(" — ") + texts.title);
    button_->setAccessibleDescription(texts.explanation);
    show(watcher.isGranted());
}

void PermissionRow::show(bool isGranted) {
    granted_->setVisible(isGranted);
    button_->setVisible(!isGranted);
}

} // namespace skylet
