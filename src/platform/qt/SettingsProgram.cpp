#include "platform/qt/SettingsProgram.h"

#include <array>

namespace skylet::platform::qt {

namespace {

const auto scheme = QStringLiteral("x-apple.systempreferences:");

struct Settings {
    const char* desktop;
    const char* accessibility; // command line, arguments separated by blanks
    const char* privacy;
};

// These desktops know no permission for key or screen capture: their privacy pane, or the overview, comes
// nearest.
constexpr std::array<Settings, 10> programs{{
    {"GNOME", "gnome-control-center universal-access", "gnome-control-center privacy"},
    {"Unity", "unity-control-center universal-access", "unity-control-center privacy"},
    {"Budgie", "budgie-control-center universal-access", "budgie-control-center privacy"},
    {"X-Cinnamon", "cinnamon-settings universal-access", "cinnamon-settings privacy"},
    {"KDE", "systemsettings kcm_access", "systemsettings"},
    {"KDE", "systemsettings5 kcm_access", "systemsettings5"},
    {"XFCE", "xfce4-accessibility-settings", "xfce4-settings-manager"},
    {"MATE", "mate-at-properties", "mate-control-center"},
    {"LXQt", "lxqt-config", "lxqt-config"},
    {"Deepin", "dde-control-center", "dde-control-center"},
}};

} // namespace

bool namesSettingsPane(const QString& url) {
    return url.startsWith(scheme);
}

std::optional<QStringList> settingsProgram(const QString& url, const QString& desktop,
                                           const std::function<bool(const QString&)>& isInstalled) {
    if (!namesSettingsPane(url)) {
        return std::nullopt;
    }
    const bool isAccessibility = url.endsWith(QStringLiteral("?Privacy_Accessibility"));
    for (const QString& name : desktop.split(u':', Qt::SkipEmptyParts)) {
        for (const Settings& settings : programs) {
            const QStringList command =
                QString::fromLatin1(isAccessibility ? settings.accessibility : settings.privacy).split(u' ');
            if (name == QLatin1StringView(settings.desktop) && isInstalled(command.constFirst())) {
                return command;
            }
        }
    }
    return std::nullopt;
}

} // namespace skylet::platform::qt
