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

std::string repeated(const std::string& text, int times) {
    std::string result;
    for (int i = 0; i < times; ++i) {
        result += text;
    }
    return result;
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

std::string frontmostTitle(const std::string& owner, const std::string& title) {
    return build(window(7, owner, title))[3].title;
}

std::string pinnedTitle(const std::string& owner, const std::string& title) {
    return build(std::nullopt, {window(7, owner, title)})[6].title;
}

TEST(StatusMenu, ListsItsItemsInOrder) {
    const ForeignWindow document = window(7, "Editor", "doc");
    const ForeignWindow other = window(8, "Browser", "");
    struct {
        const char* description;
        std::optional<ForeignWindow> frontmost;
        std::vector<ForeignWindow> pinned;
        Lines middle;
    } const cases[] = {
        {"nothing known", std::nullopt, {}, {"(Nessuna finestra da fissare)"}},
        {"a window in front", document, {}, {"Fissa «doc»"}},
        {"it is pinned",
         document,
         {document},
         {"Sblocca «doc»", "-", "(Finestre fissate)", "✓  Editor — doc", "-", "Sblocca tutte"}},
        {"another one is pinned, which has no title",
         document,
         {other},
         {"Fissa «doc»", "-", "(Finestre fissate)", "✓  Browser", "-", "Sblocca tutte"}},
        {"nothing in front, one pinned",
         std::nullopt,
         {document},
         {"(Nessuna finestra da fissare)", "-", "(Finestre fissate)", "✓  Editor — doc", "-",
          "Sblocca tutte"}},
    };
    for (const auto& one : cases) {
        Lines expected{"Informazioni su Skylet", "Controlla aggiornamenti", "-"};
        expected.insert(expected.end(), one.middle.begin(), one.middle.end());
        for (const char* line : {"-", "Impostazioni… ⌘,", "-", "Esci da Skylet ⌘q"}) {
            expected.emplace_back(line);
        }
        EXPECT_EQ(describe(build(one.frontmost, one.pinned)), expected) << one.description;
    }
}

TEST(StatusMenu, CutsLongLabelsBetweenCharacters) {
    const std::string family = "👨‍👩‍👧‍👦"; // one character of seven code points
    const std::string accented = "e\xCC\x81";               // a letter and its combining accent
    struct {
        const char* description;
        std::string character;
    } const alphabets[] = {{"plain", "x"}, {"two bytes", "è"}, {"emoji", family}, {"combining", accented}};
    for (const auto& one : alphabets) {
        SCOPED_TRACE(one.description);
        const auto text = [&](int length) {
            return repeated(one.character, length);
        };
        EXPECT_EQ(frontmostTitle("Editor", text(30)), "Fissa «" + text(30) + "»");
        EXPECT_EQ(frontmostTitle("Editor", text(31)), "Fissa «" + text(30) + "…»");
        EXPECT_EQ(frontmostTitle(text(31), ""), "Fissa «" + text(30) + "…»");
        EXPECT_EQ(pinnedTitle("Editor", text(40)), "  Editor — " + text(40));
        EXPECT_EQ(pinnedTitle("Editor", text(41)), "  Editor — " + text(40) + "…");
        EXPECT_EQ(pinnedTitle(text(41), ""), "  " + text(41)) << "only titles are cut";
    }
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
    Lines titles;
    for (const std::string& line : describe(build(std::nullopt, pinned))) {
        if (line.starts_with("✓")) {
            titles.push_back(line);
        }
    }
    EXPECT_EQ(titles, (Lines{"✓  B", "✓  a", "✓  a — z", "✓  b", "✓  \xC3\xA9 — 1", "✓  e\xCC\x81 — 2",
                             "✓  \xEF\xBD\x81", "✓  \xF0\x9F\x93\x8C"}));
}

TEST(StatusMenu, WindowsWithTheSameTextKeepTheOrderOfTheSet) {
    std::unordered_set<PinnedWindow> set;
    for (platform::WindowID windowID = 1; windowID <= 40; ++windowID) {
        set.insert(PinnedWindow(window(windowID, "Editor", repeated("x", 41) + std::to_string(windowID))));
    }
    std::vector<std::string> order;
    order.reserve(set.size());
    for (const PinnedWindow& one : set) {
        order.push_back("pinned:" + std::to_string(one.windowID));
    }
    std::vector<std::string> shown;
    for (const platform::MenuItem& item : StatusMenu::build(std::nullopt, set, {})) {
        if (item.isOn) {
            shown.push_back(item.identity);
        }
    }
    EXPECT_EQ(shown, order);
}

TEST(StatusMenu, ItemsActOnTheWindowThatTheyShow) {
    std::vector<std::string> done;
    const auto note = [&done](const char* name) {
        return [&done, name] {
            done.emplace_back(name);
        };
    };
    const StatusMenuActions actions{
        .openAbout = note("about"),
        .openUpdatesPage = note("updates"),
        .toggleFrontmost = [&](const ForeignWindow& one) { done.push_back("toggle " + one.windowTitle); },
        .unpinMenuItem = [&](platform::WindowID id) { done.push_back("unpin " + std::to_string(id)); },
        .unpinAllAction = note("all"),
        .openSettings = note("settings"),
        .quit = note("quit")};
    const auto menu = build(window(7, "Editor", "doc"), {window(8, "B", ""), window(9, "A", "")}, actions);
    std::set<std::string> identities;
    for (const platform::MenuItem& item : menu) {
        EXPECT_TRUE(identities.insert(item.identity).second) << item.identity;
        if (item.action) {
            item.action();
        }
    }
    EXPECT_EQ(done,
              (Lines{"about", "updates", "toggle doc", "unpin 9", "unpin 8", "all", "settings", "quit"}));
}

} // namespace
} // namespace skylet
