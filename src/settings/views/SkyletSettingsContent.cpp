#include "settings/views/SkyletSettingsContent.h"

#include "settings/views/PermissionRow.h"
#include "settings/views/ToggleRow.h"
#include "settings/views/ZentroShortcutRecorderRow.h"

#include <QComboBox>
#include <QSignalBlocker>
#include <QVBoxLayout>

namespace skylet {

namespace {

constexpr double sectionGap = 1.1;

} // namespace

SkyletSettingsContent::SkyletSettingsContent(const SettingsSubjects& subjects)
    : preferences_(subjects.defaults, subjects.tracker)
    , accessibility_(ZentroPermissionWatcher::accessibility({subjects.mainQueue, subjects.notifications},
                                                            subjects.accessibility))
    , screenRecording_(ZentroPermissionWatcher::screenRecording({subjects.mainQueue, subjects.notifications},
                                                                subjects.screenCapture))
    , postEvent_(ZentroPermissionWatcher::postEvent({subjects.mainQueue, subjects.notifications},
                                                    subjects.eventPoster)) {
    auto* column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(FormStyle::lines(sectionGap));
    column->addWidget(makeOverlaySection());
    auto* shortcut = new FormSection(FormStyle::text("Scorciatoia da tastiera"));
    shortcut->addRow(new ZentroShortcutRecorderRow(subjects.keyDownMonitor, subjects.shortcut));
    column->addWidget(shortcut);
    column->addWidget(makePermissionSection(subjects));
    column->addWidget(new MenuBarVisibilitySettings(subjects.defaults, subjects.statusItem, subjects.bundle));
    column->addWidget(new MenuBarPillSettings(subjects.defaults, subjects.updateIcon));
}

FormSection* SkyletSettingsContent::makeOverlaySection() {
    auto* section = new FormSection(FormStyle::text("Finestre flottanti"));
    rate_ = new QComboBox;
    for (const CaptureRateOption& option : captureRateOptions) {
        rate_->addItem(FormStyle::text(option.label), option.framesPerSecond);
    }
    showCaptureRate();
    QObject::connect(rate_, &QComboBox::activated, rate_,
                     [this](int index) { preferences_.captureRate.set(rate_->itemData(index).toDouble()); });
    section->addRow(new FormRow(
        FormStyle::text("Frequenza massima di aggiornamento"), rate_,
        FormStyle::text("La finestra flottante si aggiorna quando cambia il contenuto; una frequenza alta "
                        "non pesa se l’immagine è ferma.")));
    forward_ = new ToggleRow(
        FormStyle::text("Interagisci con la finestra flottante"), preferences_.forwardEvents.value(),
        [this](bool isOn) { preferences_.forwardEvents.set(isOn); },
        FormStyle::text("I clic e lo scorrimento vengono inviati alla finestra fissata. Fai clic tenendo "
                        "premuto ⌘ per passare alla finestra originale. Se disattivata, basta un clic per "
                        "tornare alla finestra originale."));
    section->addRow(forward_);
    allSpaces_ =
        new ToggleRow(FormStyle::text("Mostra su tutte le Scrivanie"), preferences_.pinToAllSpaces.value(),
                      [this](bool isOn) { preferences_.pinToAllSpaces.set(isOn); });
    section->addRow(allSpaces_);
    rateChanges_ = preferences_.captureRate.observeDidChange([this] { showCaptureRate(); });
    forwardChanges_ = preferences_.forwardEvents.observeDidChange(
        [this] { forward_->setOn(preferences_.forwardEvents.value()); });
    spacesChanges_ = preferences_.pinToAllSpaces.observeDidChange(
        [this] { allSpaces_->setOn(preferences_.pinToAllSpaces.value()); });
    return section;
}

FormSection* SkyletSettingsContent::makePermissionSection(const SettingsSubjects& subjects) {
    auto* section = new FormSection(FormStyle::text("Autorizzazioni"));
    section->addRow(new PermissionRow(
        accessibility_,
        {FormStyle::text("Accessibilità"), FormStyle::text("Autorizzata"),
         FormStyle::text("Necessaria per usare la scorciatoia da tastiera e portare in primo piano le "
                         "finestre fissate.")},
        subjects.allowAccessibility));
    section->addRow(new PermissionRow(
        postEvent_,
        {FormStyle::text("Invio di clic e scorrimento"), FormStyle::text("Autorizzato"),
         FormStyle::text("Necessaria per usare clic e scorrimento sulla finestra flottante "
                         "senza attivare la finestra originale.")},
        [&eventPoster = subjects.eventPoster] { ZentroPermissionWatcher::promptForPostEvent(eventPoster); }));
    section->addRow(new PermissionRow(
        screenRecording_,
        {FormStyle::text("Registrazione schermo"), FormStyle::text("Autorizzata"),
         FormStyle::text("Necessaria per acquisire il contenuto della finestra e mostrarlo in tempo reale.")},
        [&screenCapture = subjects.screenCapture, &workspace = subjects.workspace] {
            if (!screenCapture.requestAccess()) {
                ZentroPermissionWatcher::openSettings(workspace,
                                                      ZentroPermissionWatcher::Pane::screenRecording);
            }
        }));
    return section;
}

// A rate that was set outside the program need not be one of the options.
void SkyletSettingsContent::showCaptureRate() {
    const QSignalBlocker blocker(rate_);
    const double rate = preferences_.captureRate.value();
    rate_->setPlaceholderText(QStringLiteral("%1 fps").arg(rate));
    rate_->setCurrentIndex(rate_->findData(rate));
}

} // namespace skylet
