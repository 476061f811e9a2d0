#include "app/ZentroApplicationMenu.h"

#include <utility>

namespace skylet::ZentroApplicationMenu {

namespace {

using platform::MenuItem;
using platform::ResponderAction;

MenuItem edit(const char* title, const char* keyEquivalent, ResponderAction action) {
    return {.identity = title, .title = title, .keyEquivalent = keyEquivalent, .responderAction = action};
}

} // namespace

void install(platform::Application& application, const std::string& applicationName,
             std::function<void()> terminate) {
    application.setMainMenu(
        {{.title = {},
          .items = {{.identity = "quit",
                     .title = "Esci da " + applicationName,
                     .keyEquivalent = "q",
                     .action = std::move(terminate)}}},
         {.title = "Modifica",
          .items = {edit("Annulla", "z", ResponderAction::undo), edit("Ripeti", "Z", ResponderAction::redo),
                    MenuItem::separator("after undo"), edit("Taglia", "x", ResponderAction::cut),
                    edit("Copia", "c", ResponderAction::copy), edit("Incolla", "v", ResponderAction::paste),
                    MenuItem::separator("after paste"),
                    edit("Seleziona tutto", "a", ResponderAction::selectAll)}}});
}

} // namespace skylet::ZentroApplicationMenu
