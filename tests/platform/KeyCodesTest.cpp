#include "platform/x11/KeyCodes.h"

#include <gtest/gtest.h>
#include <linux/input-event-codes.h>
#include <set>

namespace skylet::test {

namespace {

using platform::x11::toVirtualKeyCode;
using platform::x11::toXKeyCode;

TEST(KeyCodes, KnowsTheKeysByTheirPlace) {
    struct {
        std::uint16_t virtualCode;
        int eventCode;
    } const cases[] = {
        {35, KEY_P},         {12, KEY_Q},         {6, KEY_Z},      {16, KEY_Y},     {22, KEY_6},
        {23, KEY_5},         {24, KEY_EQUAL},     {10, KEY_102ND}, {50, KEY_GRAVE}, {30, KEY_RIGHTBRACE},
        {42, KEY_BACKSLASH}, {51, KEY_BACKSPACE}, {53, KEY_ESC},   {90, KEY_F20},   {126, KEY_UP},
        {117, KEY_DELETE},   {76, KEY_KPENTER},   {92, KEY_KP9},
    };
    for (const auto& one : cases) {
        EXPECT_EQ(toXKeyCode(one.virtualCode), one.eventCode + 8) << one.virtualCode;
    }
}

TEST(KeyCodes, GoesBothWaysAndKnowsNoOtherKeys) {
    std::set<int> taken;
    for (int code = 0; code <= 0xFFFF; ++code) {
        const auto key = toXKeyCode(static_cast<std::uint16_t>(code));
        if (key) {
            EXPECT_TRUE(taken.insert(*key).second) << "two codes for key " << int(*key);
            EXPECT_GE(int(*key), 9) << "a grab of it would take every key";
            EXPECT_EQ(toVirtualKeyCode(*key), code);
        }
    }
    EXPECT_EQ(taken.size(), 100U);
    for (const int none : {52, 54, 55, 56, 57, 58, 59, 60, 61, 62, 63, 128, 0xFFFF}) {
        EXPECT_FALSE(toXKeyCode(static_cast<std::uint16_t>(none))) << none;
    }
    EXPECT_FALSE(toVirtualKeyCode(0));
}

} // namespace

} // namespace skylet::test
