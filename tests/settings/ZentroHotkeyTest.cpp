#include "settings/ZentroHotkey.h"

#include "foundation/PreferenceKeys.h"
#include "settings/ZentroHotkeyRegistry.h"
#include "support/SimDefaults.h"

#include <gtest/gtest.h>
#include <string>
#include <vector>

namespace skylet {
namespace {

const ZentroHotkey pinHotkey{.actionTitle = "Fissa o sblocca finestra",
                             .keyCode = 35,
                             .modifiers = 1179648,
                             .activeContext = ZentroHotkey::ActiveContext::anywhere};

TEST(ZentroHotkey, EncodesCompactlyInDeclarationOrder) {
    EXPECT_EQ(encodeHotkeys({pinHotkey}),
              R"([{"actionTitle":"Fissa o sblocca finestra","keyCode":35,"modifiers":1179648,)"
              R"("activeContext":"anywhere"}])");
    EXPECT_EQ(encodeHotkeys({}), "[]");
}

TEST(ZentroHotkey, EveryRecordSurvivesARoundTrip) {
    ZentroHotkey odd{.actionTitle = "\"quoted\" \\ / \n è ⌘",
                     .keyCode = 65535,
                     .modifiers = (std::uint64_t{1} << 62) + 1,
                     .activeContext = ZentroHotkey::ActiveContext::browser};
    const std::vector<ZentroHotkey> all{pinHotkey, odd};
    EXPECT_EQ(decodeHotkeys(encodeHotkeys(all).value_or("")), all);
}

TEST(ZentroHotkey, RefusesWhatIsNoRecord) {
    const std::string good = encodeHotkeys({pinHotkey}).value_or("");
    const auto with = [&good](const std::string& from, const std::string& to) {
        std::string text = good;
        return text.replace(text.find(from), from.size(), to);
    };
    for (const std::string& bad :
         {std::string(), std::string("{}"), std::string("[1]"), with("anywhere", "everywhere"),
          with("35", "65536"), with("35", "-1"), with("35", "35.5"), with("35", "\"35\""),
          with("keyCode", "code"), with("\"Fissa o sblocca finestra\"", "1"), with("modifiers", "flags")}) {
        EXPECT_FALSE(decodeHotkeys(bad)) << bad;
    }
}

TEST(ZentroHotkeyRegistry, ReplacesTheListAndKeepsItWhenEncodingFails) {
    sim::SimDefaults defaults;
    ZentroHotkeyRegistry::publish(defaults, {pinHotkey});
    ZentroHotkeyRegistry::publish(defaults, {});
    EXPECT_EQ(defaults.readText(PreferenceKeys::registeredHotkeys).value, "[]");
    ZentroHotkey broken = pinHotkey;
    broken.actionTitle = "\xff";
    ZentroHotkeyRegistry::publish(defaults, {broken});
    EXPECT_EQ(defaults.readText(PreferenceKeys::registeredHotkeys).value, "[]");
}

} // namespace
} // namespace skylet
