// The bar of the desktop that shows small icons with menus: menu bar, panel, tray.
//
// Units: points; images have their origin at the bottom left. Threads: main thread. Failure: where nothing
// shows status items an item can be made all the same, and appears once something does.
#pragma once

#include "platform/Color.h"
#include "platform/Menu.h"
#include "platform/Types.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace skylet::platform {

enum class SymbolWeight { regular, semibold };

struct Symbol {
    std::string name; // "pin" or "pin.fill"
    std::string accessibilityDescription;
    double pointSize = 0;
    SymbolWeight weight = SymbolWeight::regular;
    bool operator==(const Symbol&) const = default;
};

// A drawing in the given colours, never recoloured by the bar.
struct StatusImage {
    // A rounded rectangle over the whole image.
    struct Background {
        double cornerRadius = 0;
        AppearanceColor color;
        bool operator==(const Background&) const = default;
    };

    Symbol symbol;
    AppearanceColor tint;
    Size size;
    Point symbolOrigin;
    std::optional<Background> background{};
    bool operator==(const StatusImage&) const = default;
};

// Shows its image alone, without a text. Destroying it removes it from the bar.
class StatusItem {
  public:
    StatusItem() = default;
    StatusItem(const StatusItem&) = delete;
    StatusItem& operator=(const StatusItem&) = delete;
    virtual ~StatusItem() = default;

    virtual void setImage(const StatusImage& image) = 0;
    virtual void setToolTip(const std::string& text) = 0;
    // The menu would come out different now. A bar that shows a copy of its own fetches it early, so that the
    // menu does not change under the user's eyes when it opens.
    virtual void noteMenuChange() = 0;
};

class StatusBar {
  public:
    // Gives the menu as it is to be shown. Called each time right before the menu opens.
    using MenuSource = std::function<Menu()>;

    virtual ~StatusBar() = default;

    // The height that an image may take.
    [[nodiscard]] virtual double thickness() const = 0;
    [[nodiscard]] virtual Size symbolSize(const Symbol& symbol) const = 0;
    // Whether something on the desktop shows status items now.
    [[nodiscard]] virtual bool isShown() const = 0;
    // As wide as its image. The system keeps the place of items under the autosave name, where it does so.
    [[nodiscard]] virtual std::unique_ptr<StatusItem> makeStatusItem(const std::string& autosaveName,
                                                                     MenuSource menu) = 0;
};

} // namespace skylet::platform
