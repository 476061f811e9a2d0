#include "app/StatusMenu.h"

#include <gtest/gtest.h>
#include <set>
#include <string>
#include <vector>

namespace skylet {
namespace {

using Lines = std::vector<std::string>;

ForeignWindow window(platform::WindowID windowID, const std::string& owner, const std::string& title) {
    return {.windowID = windowID, .ownerPID = 500, .ownerName = owner, .windowTitle = title};
}

// One line for each item: "-" for a separator, else the title with what marks it.
Lines describe(const platform::Menu& menu) {
    Lines lines;
    for (const platform::MenuItem& item : menu) {
        lines.push_back(item.isSeparator ? "-"
                                         : (item.isEnabled ? "" : "(") + std::string(item.isOn ? "✓" : "") +
                                               item.title + (item.isEnabled ? "" : ")") +
                                               (item.keyEquivalent.empty() ? "" : " ⌘" + item.keyEquivalent));
    }
    return lines;
}

platform::Menu build(const std::optional<ForeignWindow>& frontmost,
                     const std::vector<ForeignWindow>& pinned = {}, const StatusMenuActions& actions = {}) {
    std::unordered_set<PinnedWindow> set;
    for (const ForeignWindow& one : pinned) {
        set.insert(PinnedWindow(one));
    }
    return StatusMenu::build(frontmost, set, actions);
}

TEST(StatusMenu, ListsItsItemsInOrder) {
    const ForeignWindow document = window(7, "Editor", "doc");
    const ForeignWindow other = window(8, "Browser", "");
    struct {
        std::optional<ForeignWindow> frontmost;
        std::vector<ForeignWindow> pinned;
        Lines middle;
    } const cases[] = {
        {std::nullopt, {}, {"(Nessuna finestra da fissare)"}},
        {document, {}, {"Fissa «doc»"}},
        {document, {document}, {"Sblocca «doc»", "-", "(Finestre fissate)", "✓  Editor — doc"}},
        {document, {other}, {"Fissa «doc»", "-", "(Finestre fissate)", "✓  Browser"}},
        {std::nullopt,
         {document},
         {"(Nessuna finestra da fissare)", "-", "(Finestre fissate)", "✓  Editor — doc"}},
    };
    for (const auto& one : cases) {
        Lines expected{"Informazioni su Skylet", "Controlla aggiornamenti", "-"};
        expected.insert(expected.end(), one.middle.begin(), one.middle.end());
        if (!one.pinned.empty()) {
            expected.insert(expected.end(), {"-", "Sblocca tutte"});
        }
        expected.insert(expected.end(), {"-", "Impostazioni… ⌘,", "-", "Esci da Skylet ⌘q"});
        EXPECT_EQ(describe(build(one.frontmost, one.pinned)), expected);
    }
}

TEST(StatusMenu, CutsLongLabels) {
    const auto frontmost = [](const std::string& owner, const std::string& title) {
        return build(window(7, owner, title))[3].title;
    };
    const auto pinned = [](const std::string& owner, const std::string& title) {
        return build(std::nullopt, {window(7, owner, title)})[6].title;
    };
    const std::string thirty(30, 'x');
    const std::string forty(40, 'x');
    EXPECT_EQ(frontmost("Editor", thirty), "Fissa «" + thirty + "»");
    EXPECT_EQ(frontmost("Editor", thirty + "x"), "Fissa «" + thirty + "…»");
    EXPECT_EQ(frontmost(thirty + "x", ""), "Fissa «" + thirty + "…»");
    EXPECT_EQ(pinned("Editor", forty), "  Editor — " + forty);
    EXPECT_EQ(pinned("Editor", forty + "x"), "  Editor — " + forty + "…");
    EXPECT_EQ(pinned(forty + "x", ""), "  " + forty + "x") << "only titles are cut";
}

TEST(StatusMenu, SortsPinnedWindowsByCodePoints) {
    const std::vector<ForeignWindow> pinned{
        window(1, "b", ""),
        window(2, "a", "z"),
        window(3, "B", ""),
        window(4, "a", ""),
        window(5, "\xF0\x9F\x93\x8C", ""), // beyond the first 65536
        window(6, "\xEF\xBD\x81", ""),     // U+FF41, after the surrogates
        window(7, "e\xCC\x81", "2"),       // é in two code points
        window(8, "\xC3\xA9", "1"),        // and in one
    };
    Lines titles = describe(build(std::nullopt, pinned));
    std::erase_if(titles, [](const std::string& line) { return !line.starts_with("✓"); });
    EXPECT_EQ(titles, (Lines{"✓  B", "✓  a", "✓  a — z", "✓  b", "✓  \xC3\xA9 — 1", "✓  e\xCC\x81 — 2",
                             "✓  \xEF\xBD\x81", "✓  \xF0\x9F\x93\x8C"}));
}

TEST(StatusMenu, WindowsWithTheSameTextKeepTheOrderOfTheSet) {
    std::unordered_set<PinnedWindow> set;
    for (platform::WindowID windowID = 1; windowID <= 40; ++windowID) {
        set.insert(PinnedWindow(window(windowID, "Editor", std::string(41, 'x') + std::to_string(windowID))));
    }
    Lines order;
    for (const PinnedWindow& one : set) {
        order.push_back("pinned:" + std::to_string(one.windowID));
    }
    Lines shown;
    for (const platform::MenuItem& item : StatusMenu::build(std::nullopt, set, {})) {
        if (item.isOn) {
            shown.push_back(item.identity);
        }
    }
    EXPECT_EQ(shown, order);
}

TEST(StatusMenu, ItemsActOnTheWindowThatTheyShow) {
    Lines done;
    StatusMenuActions actions;
    actions.toggleFrontmost = [&](const ForeignWindow& one) {
        done.push_back("toggle " + one.windowTitle);
    };
    actions.unpinMenuItem = [&](platform::WindowID id) {
        done.push_back("unpin " + std::to_string(id));
    };
    std::set<std::string> identities;
    for (const auto& item :
         build(window(7, "Editor", "doc"), {window(8, "B", ""), window(9, "A", "")}, actions)) {
        EXPECT_TRUE(identities.insert(item.identity).second) << item.identity;
        if (item.action) {
            item.action();
        }
    }
    EXPECT_EQ(done, (Lines{"toggle doc", "unpin 9", "unpin 8"}));
}

} // namespace
} // namespace skylet
