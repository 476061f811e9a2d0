#include "settings/OverlayPreferences.h"

#include "foundation/PreferenceKeys.h"
#include "platform/Panel.h"
#include "settings/L10n.h"
#include "support/SimulatedDesktop.h"

#include <QCoreApplication>
#include <QTranslator>

#include <gtest/gtest.h>

namespace skylet {
namespace {

class OverlayPreferencesTest : public testing::Test {
  protected:
    OverlayPreferencesTest() { desktop.launchApplication(10, "App"); }
    platform::WindowID pin() {
        const auto window = desktop.openWindow(10, "pinned", {100, 100, 400, 300});
        desktop.launchApplication(11, "Other");
        desktop.openWindow(11, "front", {0, 0, 50, 50});
        tracker.pin(desktop.foreign(window));
        desktop.activate(11);
        desktop.advance(1);
        return window;
    }

    sim::SimulatedDesktop desktop;
    OverlayInputRoutes routes;
    PinnedWindowTracker tracker{desktop.environment, routes};
    OverlayPreferences preferences{desktop.defaults, tracker};
};

TEST_F(OverlayPreferencesTest, ShowTheirDefaultsWhenNothingIsStored) {
    EXPECT_EQ(preferences.captureRate.value(), 30.0);
    EXPECT_TRUE(preferences.forwardEvents.value());
    EXPECT_FALSE(preferences.pinToAllSpaces.value());
    EXPECT_FALSE(desktop.defaults.contains(PreferenceKeys::captureRate));
}

TEST_F(OverlayPreferencesTest, ARateReachesRunningStreamsOnly) {
    preferences.captureRate.set(60);
    EXPECT_EQ(desktop.defaults.readDouble(PreferenceKeys::captureRate).value, 60);
    pin();
    ASSERT_EQ(desktop.capture.streams.size(), 1U);
    auto& configurations = desktop.capture.streams.front()->configurations;
    EXPECT_EQ(configurations.back().minimumFrameInterval.value, 10);
    const auto updates = configurations.size();
    preferences.captureRate.set(0.5);
    ASSERT_EQ(configurations.size(), updates + 1);
    EXPECT_EQ(configurations.back().minimumFrameInterval.value, 1200);
    preferences.captureRate.set(0.5); // no change
    EXPECT_EQ(configurations.size(), updates + 1);
    desktop.defaults.setDouble(PreferenceKeys::captureRate, 5); // from outside
    EXPECT_EQ(preferences.captureRate.value(), 5);
    EXPECT_EQ(configurations.back().minimumFrameInterval.value, 120);
    desktop.activate(10); // the overlay steps back and has no stream any more
    desktop.advance(1);
    EXPECT_TRUE(desktop.capture.streams.empty());
    preferences.captureRate.set(1);
}

TEST_F(OverlayPreferencesTest, AllSpacesReachesEveryOverlay) {
    pin();
    const auto behavior = [this] {
        return desktop.panels.panels.front()->configuration.collectionBehavior;
    };
    EXPECT_EQ(behavior(), 256U);
    preferences.pinToAllSpaces.set(true);
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

TEST(CaptureRateOptions, AreTheEightRatesInOrder) {
    std::string labels;
    for (const CaptureRateOption& option : captureRateOptions) {
        labels += option.label;
        labels += ";";
    }
    EXPECT_EQ(labels, "0.5 fps;1 fps;2 fps;5 fps;10 fps;15 fps;30 fps;60 fps;");
    EXPECT_EQ(captureRateOptions.front().framesPerSecond, 0.5);
    EXPECT_EQ(captureRateOptions.back().framesPerSecond, 60);
}

// A table of translations with one entry.
class OneEntry final : public QTranslator {
  public:
    [[nodiscard]] bool isEmpty() const override { return false; }
    [[nodiscard]] QString translate(const char* context, const char* text, const char* /*disambiguation*/,
                                    int /*n*/) const override {
        const bool isIt =
            QLatin1StringView(context) == QLatin1StringView("Localizable") && qstrcmp(text, "known") == 0;
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
    using Arguments = std::vector<L10n::Argument>;
    struct Case {
        const char* format;
        Arguments arguments;
        const char* expected;
    };
    const Case cases[] = {
        {"riapri %@ dalla", {std::string("Skylet")}, "riapri Skylet dalla"},
        {"%2$@ di %1$@", {std::string("a"), std::string("b")}, "b di a"},
        {"%d%% di %lld", {std::int64_t{5}, std::int64_t{12345}}, "5% di 12345"},
        {"%.2f", {3.14159}, "3.14"},
        {"%s e %@", {std::string("uno")}, "uno e %@"},
        {"%d", {std::string("no number")}, "%d"},
        {"%@", {std::string("%d")}, "%d"},
        {"100 %", {}, "100 %"},
    };
    for (const Case& test : cases) {
        EXPECT_EQ(L10n::format(test.format, test.format, test.arguments), test.expected);
    }
}

} // namespace
} // namespace skylet
