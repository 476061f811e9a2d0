// The desktop's own settings program, for URLs that name a pane of the system's settings.
//
// Failure: nothing where the desktop has none, or the URL names no pane.
#pragma once

#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

namespace skylet::platform::qt {

[[nodiscard]] bool namesSettingsPane(const QString& url);

// Program and arguments that show the pane of `url` ("x-apple.systempreferences:" and the pane). `desktop` is
// the value of $XDG_CURRENT_DESKTOP, names separated by colons; `isInstalled` tells whether a program can be
// run.
[[nodiscard]] std::optional<QStringList>
settingsProgram(const QString& url, const QString& desktop,
                const std::function<bool(const QString&)>& isInstalled);

} // namespace skylet::platform::qt
