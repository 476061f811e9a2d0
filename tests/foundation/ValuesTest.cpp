#include "foundation/Geometry.h"
#include "foundation/Lifetime.h"
#include "foundation/Notice.h"
#include "foundation/Text.h"

#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <string>
#include <vector>

namespace skylet {
namespace {

std::string repeated(const std::string& part, int count) {
    std::string text;
    for (int i = 0; i < count; ++i) {
        text += part;
    }
    return text;
}

TEST(Text, ShortensByWhatPeopleCallCharacters) {
    // A letter with a combining accent; a family of four joined into one sign; a flag.
    for (const std::string& cluster :
         {std::string("x"), std::string("e\u0301"),
          std::string("\U0001F468\u200D\U0001F469\u200D\U0001F467\u200D\U0001F466"),
          std::string("\U0001F1EE\U0001F1F9")}) {
        EXPECT_EQ(shortened(repeated(cluster, 40), 40), repeated(cluster, 40));
        EXPECT_EQ(shortened(repeated(cluster, 41), 40), repeated(cluster, 40) + "…");
    }
    EXPECT_EQ(shortened("", 40), "");
}

TEST(Text, NumbersKeepAFraction) {
    const std::vector<std::pair<double, std::string>> cases{
        {800, "800.0"}, {0, "0.0"},   {-2, "-2.0"},
        {1.5, "1.5"},   {0.1, "0.1"}, {1366.0 / 3, "455.3333333333333"}};
    for (const auto& [value, text] : cases) {
        EXPECT_EQ(formatNumber(value), text);
    }
}

TEST(Geometry, FlipIsItsOwnInverseAndKeepsSize) {
    const platform::Rect window{10, 20, 300, 200};
    const platform::Rect flipped = flip(window, 1080);
    EXPECT_EQ(flipped, (platform::Rect{10, 860, 300, 200}));
    EXPECT_EQ(flip(flipped, 1080), window);
    // A window on a screen above or below the first one.
    EXPECT_EQ(flip({0, -500, 10, 100}, 1080), (platform::Rect{0, 1480, 10, 100}));
}

TEST(Lifetime, GuardedWorkDoesNothingOnceTheOwnerIsGone) {
    auto lifetime = std::make_unique<Lifetime>();
    int calls = 0;
    const std::function<bool(int)> guarded = lifetime->guard([&calls](int value) {
        calls += value;
        return true;
    });
    EXPECT_TRUE(guarded(2));
    lifetime.reset();
    EXPECT_FALSE(guarded(2));
    EXPECT_EQ(calls, 2);
}

TEST(Notice, ObserversMayComeAndGoDuringAPost) {
    Notice<> notice;
    int late = 0;
    int second = 0;
    platform::Subscription added;
    platform::Subscription gone;
    const auto first = notice.observe([&] {
        gone.reset();
        if (added == nullptr) {
            added = notice.observe([&late] { ++late; });
        }
    });
    gone = notice.observe([&second] { ++second; });
    notice.post();
    EXPECT_EQ(second, 0);
    EXPECT_EQ(late, 0);
    notice.post();
    EXPECT_EQ(late, 1);
}

} // namespace
} // namespace skylet
