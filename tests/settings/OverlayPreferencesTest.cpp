#include "settings/OverlayPreferences.h"

#include "foundation/PreferenceKeys.h"
#include "settings/L10n.h"
#include "support/SimulatedDesktop.h"

#include <QCoreApplication>
#include <QTranslator>

#include <gtest/gtest.h>

namespace skylet {
namespace {

class OverlayPreferencesTest : public testing::Test {
  protected:
    // One window is pinned and another application is in front.
    OverlayPreferencesTest() {
        pin();
        desktop.openWindow(browser, "front", {0, 0, 50, 50});
        desktop.activate(browser);
        desktop.advance(1);
    }
    void pin() { tracker.pin(desktop.foreign(desktop.openWindow(editor, "pinned", {100, 100, 400, 300}))); }

    sim::SimulatedDesktop desktop;
    OverlayInputRoutes routes;
    PinnedWindowTracker tracker{desktop.environment, routes};
    OverlayPreferences preferences{desktop.defaults, tracker};
};

TEST_F(OverlayPreferencesTest, ARateReachesRunningStreamsOnly) {
    auto& configurations = desktop.capture.streams.at(0)->configurations;
    preferences.captureRate.set(60);
    EXPECT_EQ(desktop.defaults.readDouble(PreferenceKeys::captureRate).value, 60);
    EXPECT_EQ(configurations.back().minimumFrameInterval.value, 10);
    const auto updates = configurations.size();
    preferences.captureRate.set(60); // no change
    EXPECT_EQ(configurations.size(), updates);
    desktop.defaults.setDouble(PreferenceKeys::captureRate, 5); // from outside
    EXPECT_EQ(preferences.captureRate.value(), 5);
    EXPECT_EQ(configurations.back().minimumFrameInterval.value, 120);
    desktop.activate(editor); // the overlay steps back and has no stream any more
    desktop.advance(1);
    EXPECT_TRUE(desktop.capture.streams.empty());
    preferences.captureRate.set(1);
}

TEST_F(OverlayPreferencesTest, AllSpacesReachesEveryOverlayAlsoLaterOnes) {
    const auto behavior = [this] {
        return desktop.panels.panels.back()->configuration.collectionBehavior;
    };
    EXPECT_EQ(behavior(), 256U);
    preferences.pinToAllSpaces.set(true);
    EXPECT_EQ(behavior(), 257U);
    pin();
    EXPECT_EQ(behavior(), 257U);
    desktop.defaults.remove(PreferenceKeys::pinToAllSpaces);
    EXPECT_EQ(behavior(), 256U);
}

TEST_F(OverlayPreferencesTest, OneNoticePerChange) {
    int notices = 0;
    const auto changes = preferences.forwardEvents.observeDidChange([&notices] { ++notices; });
    preferences.forwardEvents.set(false);
    preferences.forwardEvents.set(false);
    desktop.defaults.setDouble("something else", 1);
    EXPECT_EQ(notices, 1);
    desktop.defaults.setDouble(PreferenceKeys::forwardEvents, 7); // no boolean: the default
    EXPECT_TRUE(preferences.forwardEvents.value());
    EXPECT_EQ(notices, 2);
}

// A table of translations with one entry.
class OneEntry final : public QTranslator {
  public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* text, const char* /*disambiguation*/,
                                    int /*n*/) const override {
        const bool isIt = qstrcmp(context, "Localizable") == 0 && qstrcmp(text, "known") == 0;
        return isIt ? QStringLiteral("found %@") : QString();
    }
};

TEST(L10n, LooksUpAndFallsBack) {
    int count = 1;
    char name[] = "test";
    char* arguments[] = {name, nullptr};
    const QCoreApplication application(count, arguments);
    OneEntry table;
    QCoreApplication::installTranslator(&table);
    EXPECT_EQ(L10n::string("known", "default"), "found %@");
    EXPECT_EQ(L10n::string("shortcut.clear", "Rimuovi"), "Rimuovi");
    EXPECT_EQ(L10n::string("l’app", "l’app"), "l’app");
    EXPECT_EQ(L10n::format("known", "default", {std::string("it")}), "found it");
}

TEST(L10n, FormatsAsPrintfDoes) {
    const std::tuple<const char*, std::vector<L10n::Argument>, const char*> cases[] = {
        {"riapri %@ dalla", {std::string("Skylet")}, "riapri Skylet dalla"},
        {"%2$@ di %1$@", {std::string("a"), std::string("b")}, "b di a"},
        {"%d%% di %lld", {std::int64_t{5}, std::int64_t{12345}}, "5% di 12345"},
        {"%.2f", {3.14159}, "3.14"},
        {"%s e %@", {std::string("uno")}, "uno e %@"},
        {"%d", {std::string("no number")}, "%d"},
        {"%@", {std::string("%d")}, "%d"},
        {"100 %", {}, "100 %"},
    };
    for (const auto& [format, arguments, expected] : cases) {
        EXPECT_EQ(L10n::format(format, format, arguments), expected);
    }
}

} // namespace
} // namespace skylet
