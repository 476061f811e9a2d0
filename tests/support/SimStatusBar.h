// The status bar and the application menu of the simulated desktop.
#pragma once

#include "platform/Application.h"
#include "platform/StatusBar.h"

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace skylet::sim {

struct SimStatusItem final : platform::StatusItem {
    // Stands in the list of `all` items while it lives.
    SimStatusItem(std::vector<SimStatusItem*>& all, std::string name, platform::StatusBar::MenuSource source)
        : autosaveName(std::move(name))
        , menu(std::move(source))
        , items(all) {
        items.push_back(this);
    }
    ~SimStatusItem() override { std::erase(items, this); }

    const std::string autosaveName;
    const platform::StatusBar::MenuSource menu; // call it as the user opens the menu
    platform::StatusImage image;
    std::string toolTip;
    int drawings = 0;
    platform::Menu copy; // what a bar shows that keeps a copy of the menu
    std::vector<SimStatusItem*>& items;

    void setImage(const platform::StatusImage& value) override {
        image = value;
        ++drawings;
    }
    void setToolTip(const std::string& text) override { toolTip = text; }
    void noteMenuChange() override { copy = menu(); }
};

struct SimStatusBar final : platform::StatusBar {
    bool shown = true;
    std::vector<SimStatusItem*> items; // those that live, oldest first
    int itemsMade = 0;

    double thickness() const override { return 22; }
    platform::Size symbolSize(const platform::Symbol&) const override { return {12, 16}; }
    bool isShown() const override { return shown; }
    std::unique_ptr<platform::StatusItem> makeStatusItem(const std::string& autosaveName,
                                                         MenuSource menu) override {
        ++itemsMade;
        return std::make_unique<SimStatusItem>(items, autosaveName, std::move(menu));
    }
};

struct SimMainMenu final : platform::Application {
    platform::MainMenu mainMenu;
    bool accessory = false;

    void setMainMenu(const platform::MainMenu& menu) override { mainMenu = menu; }
    void setAccessoryActivationPolicy() override { accessory = true; }
};

} // namespace skylet::sim
