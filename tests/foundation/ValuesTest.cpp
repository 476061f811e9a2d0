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
    EXPECT_EQ(formatNumber(800), "800.0");
    EXPECT_EQ(formatNumber(-2), "-2.0");
    EXPECT_EQ(formatNumber(0.1), "0.1");
    EXPECT_EQ(formatNumber(1366.0 / 3), "455.3333333333333");
}

TEST(Geometry, FlipIsItsOwnInverseAndKeepsSize) {
    for (const auto& [window, flipped] :
         {std::pair<platform::Rect, platform::Rect>{{10, 20, 300, 200}, {10, 860, 300, 200}},
          {{0, -500, 10, 100}, {0, 1480, 10, 100}}}) { // on a screen above the first one
        EXPECT_EQ(flip(window, 1080), flipped);
        EXPECT_EQ(flip(flipped, 1080), window);
    }
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
