// The application's own menu: quitting, and editing in text fields.
//
// Threads: main thread.
#pragma once

#include "platform/Application.h"

#include <functional>
#include <string>

namespace skylet::ZentroApplicationMenu {

// Replaces the main menu. `terminate` asks the application to end.
void install(platform::Application& application, const std::string& applicationName,
             std::function<void()> terminate);

} // namespace skylet::ZentroApplicationMenu
