#include "settings/views/ZentroShortcutRecorderRow.h"

#include "settings/L10n.h"
#include "settings/views/FormButton.h"

#include <QHBoxLayout>
#include <QHideEvent>

#include <utility>

namespace skylet {

namespace {

constexpr double controlSpacing = 0.5;

QString keyed(const char* key, const char* italian) {
    return QString::fromStdString(L10n::string(key, italian));
}

QString describe(platform::KeyRefusal refusal) {
    return refusal == platform::KeyRefusal::heldByAnotherProgram
               ? FormStyle::text("Questa scorciatoia è già usata da un’altra app.")
               : FormStyle::text("Questa scorciatoia non è disponibile sulla tastiera in uso.");
}

} // namespace

// What stands at the row's trailing edge, while it records and while it does not.
class ZentroShortcutRecorderRow::Controls : public QWidget {
  public:
    Controls()
        : shortcut(new ToneLabel({}, ToneLabel::Size::caption, FormStyle::Tone::secondary))
        , hint(new ToneLabel({}, ToneLabel::Size::caption, FormStyle::Tone::notice))
        , clear(new FormButton(keyed("shortcut.clear", "Rimuovi"), FormButton::Size::caption))
        , change(new FormButton(keyed("shortcut.change", "Modifica…"), FormButton::Size::caption))
        , cancel(new FormButton(keyed("shortcut.cancel", "Annulla"), FormButton::Size::caption)) {
        auto* line = new QHBoxLayout(this);
        line->setContentsMargins(0, 0, 0, 0);
        line->setSpacing(FormStyle::lines(controlSpacing));
        shortcut->setWordWrap(false);
        hint->setAlignment(Qt::AlignRight | Qt::AlignVCenter);
        // The longer hint takes two lines; the row is not to jump when it comes.
        setMinimumHeight(2 * hint->fontMetrics().lineSpacing() + 1);
        line->addWidget(shortcut);
        line->addWidget(hint, 1);
        for (FormButton* button : {clear, change, cancel}) {
            line->addWidget(button);
        }
    }

    ToneLabel* shortcut;
    ToneLabel* hint;
    FormButton* clear;
    FormButton* change;
    FormButton* cancel;
};

ZentroShortcutRecorderRow::ZentroShortcutRecorderRow(platform::KeyDownMonitor& monitor,
                                                     ZentroShortcutRecorder::Connections connections)
    : ZentroShortcutRecorderRow(monitor, std::move(connections), new Controls) {}

ZentroShortcutRecorderRow::ZentroShortcutRecorderRow(platform::KeyDownMonitor& monitor,
                                                     ZentroShortcutRecorder::Connections connections,
                                                     Controls* controls)
    : FormRow(QString::fromStdString(connections.label), controls, {}, controls->change)
    , recorder_(monitor, std::move(connections))
    , controls_(controls)
    , changes_(recorder_.observeDidChange([this] { refresh(); })) {
    captionLabel().setTone(FormStyle::Tone::notice);
    const QString label = QString::fromStdString(recorder_.label());
    for (FormButton* button : {controls_->clear, controls_->change, controls_->cancel}) {
        button->setAccessibleName(button->text() + QStringLiteral(" — ") + label);
    }
    QObject::connect(controls_->change, &QAbstractButton::clicked, this,
                     [this] { recorder_.startRecording(); });
    QObject::connect(controls_->cancel, &QAbstractButton::clicked, this,
                     [this] { recorder_.stopRecording(); });
    QObject::connect(controls_->clear, &QAbstractButton::clicked, this, [this] { recorder_.clear(); });
    refresh();
}

void ZentroShortcutRecorderRow::refresh() {
    const bool isRecording = recorder_.isRecording();
    const bool hadFocus =
        controls_->change->hasFocus() || controls_->cancel->hasFocus() || controls_->clear->hasFocus();
    const bool begins = isRecording && !std::exchange(wasRecording_, isRecording);
    wasRecording_ = isRecording;
    controls_->shortcut->setText(QString::fromStdString(recorder_.displayString()));
    controls_->hint->setWordWrap(recorder_.needsModifier()); // the short one is not to be broken
    controls_->hint->setText(
        recorder_.needsModifier()
            ? keyed("shortcut.needs_modifier", "Tieni premuto ⌘, ⌃ o ⌥, oppure premi un tasto F")
            : keyed("shortcut.press", "Premi la scorciatoia…"));
    // What appears comes first, so that the focus never leaves the row.
    controls_->cancel->setVisible(isRecording);
    controls_->change->setVisible(!isRecording);
    if (begins || (hadFocus && isRecording)) {
        controls_->cancel->setFocus();
    } else if (hadFocus) {
        controls_->change->setFocus();
    }
    controls_->hint->setVisible(isRecording);
    controls_->shortcut->setVisible(!isRecording);
    controls_->clear->setVisible(!isRecording && recorder_.canClear());

    const auto refusal = isRecording ? std::nullopt : recorder_.refusal();
    setCaption(refusal ? describe(*refusal) : QString());
    const QString shown = isRecording ? controls_->hint->text() : controls_->shortcut->text();
    controls_->change->setAccessibleDescription(refusal ? shown + QStringLiteral(". ") + describe(*refusal)
                                                        : shown);
    controls_->cancel->setAccessibleDescription(shown);
}

// Who holds the shortcut may have changed while nobody looked.
void ZentroShortcutRecorderRow::showEvent(QShowEvent* event) {
    FormRow::showEvent(event);
    refresh();
}

void ZentroShortcutRecorderRow::hideEvent(QHideEvent* event) {
    FormRow::hideEvent(event);
    if (!event->spontaneous()) {
        recorder_.stopRecording();
    }
}

} // namespace skylet
