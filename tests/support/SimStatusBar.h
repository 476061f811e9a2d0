// The status bar and the application menu of the simulated desktop.
#pragma once

#include "platform/Application.h"
#include "platform/StatusBar.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace skylet::sim {

class SimStatusBar;

class SimStatusItem final : public platform::StatusItem {
  public:
    SimStatusItem(SimStatusBar& bar, std::string autosaveName, platform::StatusBar::MenuSource menu);
    ~SimStatusItem() override;

    const std::string autosaveName;
    const platform::StatusBar::MenuSource menu; // call it as the user opens the menu
    platform::StatusImage image;
    std::string toolTip;
    int drawings = 0;
    // What a bar shows that keeps a copy of the menu.
    platform::Menu copy;

    void setImage(const platform::StatusImage& value) override {
        image = value;
        ++drawings;
    }
    void setToolTip(const std::string& text) override { toolTip = text; }
    void noteMenuChange() override { copy = menu(); }

  private:
    SimStatusBar& bar_;
};

class SimStatusBar final : public platform::StatusBar {
  public:
    bool shown = true;
    double barThickness = 22;
    platform::Size size{12, 16};
    std::vector<SimStatusItem*> items; // those that live, oldest first
    int itemsMade = 0;

    [[nodiscard]] double thickness() const override { return barThickness; }
    [[nodiscard]] platform::Size symbolSize(const platform::Symbol& /*symbol*/) const override {
        return size;
    }
    [[nodiscard]] bool isShown() const override { return shown; }
    [[nodiscard]] std::unique_ptr<platform::StatusItem> makeStatusItem(const std::string& autosaveName,
                                                                       MenuSource menu) override {
        ++itemsMade;
        return std::make_unique<SimStatusItem>(*this, autosaveName, std::move(menu));
    }
};

inline SimStatusItem::SimStatusItem(SimStatusBar& bar, std::string name,
                                    platform::StatusBar::MenuSource source)
    : autosaveName(std::move(name))
    , menu(std::move(source))
    , bar_(bar) {
    bar_.items.push_back(this);
}

inline SimStatusItem::~SimStatusItem() {
    std::erase(bar_.items, this);
}

class SimMainMenu final : public platform::Application {
  public:
    platform::MainMenu mainMenu;
    bool accessory = false;

    void setMainMenu(const platform::MainMenu& menu) override { mainMenu = menu; }
    void setAccessoryActivationPolicy() override { accessory = true; }
};

} // namespace skylet::sim
