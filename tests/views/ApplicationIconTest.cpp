// The installed icons and the one that the program draws where none is installed show the same.
#include "settings/views/ApplicationIcon.h"

#include <QImage>
#include <QPixmap>

#include <cstdlib>
#include <gtest/gtest.h>

namespace skylet::test {
namespace {

// Renderers differ along edges only.
constexpr int visibleDifference = 40; // of 255, in one channel
constexpr double edgeShare = 0.02;

TEST(ApplicationIconTest, IsDrawnAsInstalled) {
    for (const int size : {48, 64, 128, 256}) {
        SCOPED_TRACE(size);
        const QString file = QStringLiteral(SKYLET_ICONS "/com.corvane.skylet-%1.png").arg(size);
        constexpr auto format = QImage::Format_ARGB32_Premultiplied;
        const QImage installed = QImage(file).convertToFormat(format);
        const QImage drawn = applicationIcon().pixmap(size, size).toImage().convertToFormat(format);
        ASSERT_EQ(installed.size(), QSize(size, size));
        ASSERT_EQ(drawn.size(), installed.size());
        int different = 0;
        for (int y = 0; y < size; ++y) {
            for (int x = 0; x < size; ++x) {
                const QRgb a = installed.pixel(x, y);
                const QRgb b = drawn.pixel(x, y);
                if (std::abs(qRed(a) - qRed(b)) > visibleDifference ||
                    std::abs(qGreen(a) - qGreen(b)) > visibleDifference ||
                    std::abs(qAlpha(a) - qAlpha(b)) > visibleDifference) {
                    ++different;
                }
            }
        }
        EXPECT_LT(different, edgeShare * size * size);
    }
}

} // namespace
} // namespace skylet::test
