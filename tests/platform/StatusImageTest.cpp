#include "platform/qt/StatusImageDrawing.h"

#include <QColor>

#include <cstdlib>
#include <gtest/gtest.h>
#include <string>

namespace skylet::test {

namespace {

using namespace platform;
using qt::drawStatusImage;

constexpr AppearanceColor red{.light = {1, 0.2, 0}, .dark = {1, 0.4, 0.2}};
constexpr QRgb lightRed = 0xFFFF3300;
constexpr QRgb darkRed = 0xFFFF6633;
constexpr AppearanceColor grey{.light = {0.2, 0.2, 0.2, 0.5}, .dark = {0.8, 0.8, 0.8, 1}};

StatusImage plain(const std::string& symbol) {
    return {.symbol = {.name = symbol,
                       .accessibilityDescription = "Skylet",
                       .pointSize = 16,
                       .weight = SymbolWeight::semibold},
            .tint = red,
            .size = {12, 16},
            .symbolOrigin = {}};
}

StatusImage onCapsule(const std::string& symbol) {
    StatusImage image = plain(symbol);
    image.size = {24, 20};
    image.symbolOrigin = {6, 2};
    image.background = {.cornerRadius = 10, .color = grey};
    return image;
}

int countOf(const QImage& image, QRgb color) {
    int count = 0;
    for (int i = 0; i < image.width() * image.height(); ++i) {
        count += image.pixel(i % image.width(), i / image.width()) == color ? 1 : 0;
    }
    return count;
}

// Up to what rounding makes of smoothed edges.
bool isCentred(const QImage& image) {
    constexpr int tolerance = 24;
    const QImage mirrored = image.mirrored(true, false);
    for (int i = 0; i < image.width() * image.height(); ++i) {
        const QPoint place(i % image.width(), i / image.width());
        if (std::abs(qAlpha(image.pixel(place)) - qAlpha(mirrored.pixel(place))) > tolerance) {
            return false;
        }
    }
    return true;
}

// Panels' icon sizes, at the scales 1, 1.5 and 2.
class StatusImageTest : public testing::TestWithParam<int> {};

TEST_P(StatusImageTest, IsDrawnForItsSize) {
    const int size = GetParam();
    for (const auto* symbol : {"pin", "pin.fill"}) {
        for (const StatusImage& image : {plain(symbol), onCapsule(symbol)}) {
            const QImage drawn = drawStatusImage(image, {size, size}, false);
            ASSERT_EQ(drawn.size(), QSize(size, size));
            EXPECT_TRUE(isCentred(drawn)) << symbol;
            EXPECT_GT(countOf(drawn, lightRed), size) << symbol;
            EXPECT_EQ(countOf(drawn, darkRed), 0);
            EXPECT_GT(countOf(drawStatusImage(image, {size, size}, true), darkRed), size);
        }
    }
}

TEST_P(StatusImageTest, BodyHasSharpEdgesAndIsHollowUnlessFilled) {
    const int size = GetParam();
    const QImage outline = drawStatusImage(plain("pin"), {size, size}, false);
    const QImage filled = drawStatusImage(plain("pin.fill"), {size, size}, false);
    const int row = size / 4; // below the cap, above where the body spreads
    int edges = 0;
    for (int x = 0; x < size; ++x) {
        const int alpha = outline.pixelColor(x, row).alpha();
        EXPECT_TRUE(alpha == 0 || alpha == 255) << "blurred at " << x;
        edges += x > 0 && alpha != outline.pixelColor(x - 1, row).alpha() ? 1 : 0;
    }
    EXPECT_EQ(edges, 4) << "two lines";
    EXPECT_EQ(outline.pixelColor(size / 2, row).alpha(), 0);
    EXPECT_EQ(filled.pixel(size / 2, row), lightRed);
    // Outlines have the same shape from outside.
    EXPECT_EQ(outline.pixelColor(size / 2, size - 1).alpha(), filled.pixelColor(size / 2, size - 1).alpha());
}

TEST_P(StatusImageTest, CapsuleFillsTheWidthInItsProportions) {
    const int size = GetParam();
    const QImage drawn = drawStatusImage(onCapsule("pin"), {size, size}, false);
    const int middle = size / 2;
    const auto isCapsule = [&](int x, int y) {
        const QColor color = drawn.pixelColor(x, y);
        return std::abs(color.alphaF() - 0.5F) < 0.02F && std::abs(color.redF() - 0.2F) < 0.02F;
    };
    EXPECT_TRUE(isCapsule(1, middle));
    EXPECT_TRUE(isCapsule(size - 2, middle));
    int height = 0;
    for (int y = 0; y < size; ++y) {
        height += drawn.pixelColor(middle, y).alpha() > 0 ? 1 : 0;
    }
    EXPECT_EQ(drawn.pixelColor(0, (size - height) / 2).alpha(), 0) << "round corners";
    EXPECT_NEAR(height, size * 20.0 / 24, 2);
    EXPECT_LE(height, size * 20.0 / 24 + 1);
    const QColor dark = drawStatusImage(onCapsule("pin"), {size, size}, true).pixelColor(1, middle);
    EXPECT_NEAR(dark.redF(), 0.8F, 0.01F);
    EXPECT_NEAR(dark.alphaF(), 1.0F, 0.01F);
}

INSTANTIATE_TEST_SUITE_P(Sizes, StatusImageTest,
                         testing::Values(16, 18, 20, 22, 24, 27, 32, 33, 36, 44, 48, 64, 72, 96, 128));

TEST(StatusImage, DrawsNothingIntoNothing) {
    EXPECT_TRUE(drawStatusImage(plain("pin"), {0, 0}, false).isNull());
    EXPECT_TRUE(drawStatusImage({}, {22, 22}, false).isNull());
}

TEST(StatusImage, StaysCentredInCellsThatAreNotSquare) {
    const QImage drawn = drawStatusImage(plain("pin.fill"), {64, 22}, false);
    const QImage square = drawStatusImage(plain("pin.fill"), {22, 22}, false);
    EXPECT_EQ(drawn.copy(21, 0, 22, 22), square);
}

} // namespace

} // namespace skylet::test
