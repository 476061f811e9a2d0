#include "settings/views/MenuBarSettings.h"

#include "foundation/PreferenceKeys.h"
#include "settings/L10n.h"
#include "settings/views/ToggleRow.h"

#include <string>
#include <utility>

namespace skylet {

namespace {

constexpr const char* anyApp = "l’app";
constexpr const char* restoreHint = "Per ripristinare l’icona, riapri %@ dalla cartella Applicazioni.";

} // namespace

MenuBarVisibilitySettings::MenuBarVisibilitySettings(platform::Defaults& defaults,
                                                     StatusItemVisibilityAccess access,
                                                     const BundleInfo& bundle)
    : FormSection(FormStyle::text("Barra dei menu"))
    , access_(std::move(access))
    , toggle_(new ToggleRow(FormStyle::text("Mostra l’icona nella barra dei menu"), access_.isVisible(),
                            [this](bool isOn) {
                                access_.setVisible(isOn);
                                follow();
                            }))
    , hint_(new HintRow(QString::fromStdString(L10n::format(
          restoreHint, restoreHint, {bundle.name ? *bundle.name : L10n::string(anyApp, anyApp)}))))
    , changes_(defaults.observeDidChange([this] { follow(); })) {
    addRow(toggle_);
    addRow(hint_);
    follow();
}

void MenuBarVisibilitySettings::follow() {
    const bool isVisible = access_.isVisible();
    toggle_->setOn(isVisible);
    hint_->setVisible(!isVisible);
    update();
}

MenuBarPillSettings::MenuBarPillSettings(platform::Defaults& defaults, std::function<void()> onChanged)
    : FormSection(FormStyle::text("Icona della barra dei menu"))
    , enabled_(defaults, PreferenceKeys::menuBarPillEnabled, false)
    , onChanged_(std::move(onChanged))
    , toggle_(new ToggleRow(FormStyle::text("Mostra lo sfondo dell’icona"), enabled_.value(),
                            [this](bool isOn) { enabled_.set(isOn); }))
    , changes_(enabled_.observeDidChange([this] {
        toggle_->setOn(enabled_.value());
        if (onChanged_) {
            onChanged_();
        }
    })) {
    addRow(toggle_);
}

} // namespace skylet
