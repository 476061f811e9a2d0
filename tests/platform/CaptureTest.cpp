// Capture and drawing: what a panel shows of a window that is covered, scaled, resized, hidden or gone.
#include "platform/ServerTest.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/x11/PanelCanvas.h"
#include "platform/x11/X11CaptureStream.h"
#include "platform/x11/X11ScreenCapture.h"
#include "platform/x11/X11WindowServer.h"

#include <algorithm>

namespace skylet::test {

namespace {

using namespace platform;
using namespace platform::x11;

constexpr int targetWidth = 200;
constexpr int targetHeight = 160;

// A panel's window without the panel: what the canvas draws into.
class CaptureTest : public ServerTest {
  protected:
    CaptureTest() {
        xcb_create_gc(other_.raw(), gc_, target_, 0, nullptr);
        fill(0x102030, {0, 0, targetWidth, targetHeight});
    }
    ~CaptureTest() override {
        stream_.reset();
        canvas_.reset();
        queue_.discard();
    }

    void fill(std::uint32_t colour, xcb_rectangle_t rect) {
        xcb_change_gc(other_.raw(), gc_, XCB_GC_FOREGROUND, &colour);
        xcb_poly_fill_rectangle(other_.raw(), target_, gc_, 1, &rect);
        other_.sync();
    }
    // A window of this size, over everything, that shows the target from now on.
    void show(int width, int height, double interval = 0) {
        panel_ = other_.show(
            {300, 200, static_cast<std::uint16_t>(width), static_cast<std::uint16_t>(height)}, true);
        canvas_.emplace(connection(), formats_, panel_, width, height);
        canvas_->setShown(true);
        configuration_.width = width;
        configuration_.height = height;
        configuration_.minimumFrameInterval = {static_cast<std::int64_t>(interval * 600), 600};
        samples_ = capture_.makeSampleQueue("samples");
        stream_ = capture_.makeStream(capture_.makeFilter(target_), configuration_,
                                      [this](const CaptureError&) { ++stops_; });
        EXPECT_FALSE(
            stream_->addStreamOutput(OutputType::screen, *samples_, [this](OutputType, const Frame& frame) {
                ++frames_;
                canvas_->setSurface(std::static_pointer_cast<MirrorSurface>(frame.surface));
            }));
        stream_->startCapture({});
        ASSERT_TRUE(eventually([this] { return frames_ > 0; }));
    }
    [[nodiscard]] std::uint32_t pixel(int x, int y) {
        connection().flush();
        auto image = connection().ask<xcb_get_image, xcb_get_image_reply>(
            std::uint8_t{XCB_IMAGE_FORMAT_Z_PIXMAP}, panel_, static_cast<std::int16_t>(x),
            static_cast<std::int16_t>(y), std::uint16_t{1}, std::uint16_t{1}, ~0U);
        if (!image) {
            return 0xBAD;
        }
        const std::uint8_t* bytes = xcb_get_image_data(image.get());
        return bytes[0] | (std::uint32_t{bytes[1]} << 8) | (std::uint32_t{bytes[2]} << 16);
    }
    [[nodiscard]] bool shows(int x, int y, std::uint32_t colour) {
        return eventually([&] { return pixel(x, y) == colour; });
    }

    qt::QtMainQueue queue_;
    RenderFormats formats_{connection()};
    X11WindowServer windowServer_{connection()};
    X11ScreenCapture capture_{connection(), formats_, windowServer_, queue_};
    const xcb_window_t target_ = other_.show({10, 10, targetWidth, targetHeight});
    const xcb_gcontext_t gc_ = xcb_generate_id(other_.raw());
    xcb_window_t panel_ = XCB_WINDOW_NONE;
    std::optional<PanelCanvas> canvas_;
    StreamConfiguration configuration_;
    std::unique_ptr<SerialQueue> samples_;
    std::shared_ptr<CaptureStream> stream_;
    int frames_ = 0;
    int stops_ = 0;
};

TEST_F(CaptureTest, FollowsACoveredWindowPixelByPixel) {
    show(targetWidth, targetHeight);
    EXPECT_TRUE(shows(5, 5, 0x102030));
    (void)other_.show({0, 0, 290, 190}); // over the target
    fill(0xAA0000, {20, 30, 1, 1});
    EXPECT_TRUE(shows(20, 30, 0xAA0000));
    EXPECT_EQ(pixel(21, 30), 0x102030U);
    EXPECT_EQ(pixel(20, 31), 0x102030U);
    fill(0x00BB00, {targetWidth - 1, targetHeight - 1, 1, 1});
    EXPECT_TRUE(shows(targetWidth - 1, targetHeight - 1, 0x00BB00));
}

TEST_F(CaptureTest, ScalesTheWholeContentOntoThePanel) {
    // Quadrants of four colours: their centres must be where the scale puts them.
    const std::uint32_t colours[2][2] = {{0xFF0000, 0x0000FF}, {0x00FF00, 0xFFFF00}};
    for (std::int16_t i = 0; i < 4; ++i) {
        fill(colours[i % 2][i / 2],
             {static_cast<std::int16_t>(i % 2 * targetWidth / 2),
              static_cast<std::int16_t>(i / 2 * targetHeight / 2), targetWidth / 2, targetHeight / 2});
    }
    for (const auto& [width, height] : std::vector<std::pair<int, int>>{
             {100, 80}, {300, 240}, {60, 48}, {37, 29}, {20, 300}, {17, 13}, {200, 40}}) {
        frames_ = 0;
        show(width, height);
        for (int i = 0; i < 4; ++i) {
            EXPECT_TRUE(
                shows(width / 4 + i % 2 * width / 2, height / 4 + i / 2 * height / 2, colours[i % 2][i / 2]))
                << width << "x" << height << " quadrant " << i;
        }
        stream_->stopCapture({});
    }
}

TEST_F(CaptureTest, HalvesInsteadOfSkippingPixels) {
    // Single columns: at a quarter each panel pixel is the mean of four of them.
    for (std::int16_t x = 0; x < targetWidth; x += 4) {
        fill(0xFFFFFF, {x, 0, 1, targetHeight});
        fill(0x000000, {static_cast<std::int16_t>(x + 1), 0, 3, targetHeight});
    }
    show(targetWidth / 4, targetHeight / 4);
    EXPECT_TRUE(eventually([this] {
        const std::uint32_t value = pixel(20, 20) & 0xFF;
        return value >= 0x38 && value <= 0x48;
    })) << std::hex
        << pixel(20, 20);
    // A small change reaches the halved picture too.
    fill(0xFFFFFF, {100, 80, 4, 4});
    EXPECT_TRUE(eventually([this] { return (pixel(25, 20) & 0xFF) > 0xC0; }));
}

TEST_F(CaptureTest, CropsTheClientDrawnShadow) {
    other_.setItems(target_, "_GTK_FRAME_EXTENTS", XCB_ATOM_CARDINAL, {10, 20, 30, 40});
    fill(0x445566, {10, 30, targetWidth - 30, targetHeight - 70});
    show(targetWidth - 30, targetHeight - 70);
    EXPECT_TRUE(shows(0, 0, 0x445566));
    EXPECT_TRUE(shows(targetWidth - 31, targetHeight - 71, 0x445566));
    // The shadow goes when the window is maximised, say.
    xcb_delete_property(other_.raw(), target_, other_.atom("_GTK_FRAME_EXTENTS"));
    fill(0x998877, {0, 0, 8, 8});
    EXPECT_TRUE(shows(0, 0, 0x998877));
}

TEST_F(CaptureTest, FollowsAWindowThatIsResizedAndThatIsShownAgain) {
    show(targetWidth, targetHeight);
    const std::uint32_t size[] = {400, 300};
    xcb_configure_window(other_.raw(), target_, XCB_CONFIG_WINDOW_WIDTH | XCB_CONFIG_WINDOW_HEIGHT, size);
    fill(0x00AA55, {0, 0, 400, 300});
    EXPECT_TRUE(shows(targetWidth - 2, targetHeight - 2, 0x00AA55));
    EXPECT_TRUE(shows(1, 1, 0x00AA55));
    other_.unmap(target_);
    dispatch();
    canvas_->redraw({0, 0, targetWidth, targetHeight});
    EXPECT_TRUE(shows(5, 5, 0x00AA55)) << "the last picture stays";
    other_.map(target_);
    fill(0x778899, {0, 0, 400, 300});
    EXPECT_TRUE(shows(5, 5, 0x778899));
}

TEST_F(CaptureTest, StopsOnceWhenTheWindowIsDestroyed) {
    show(targetWidth, targetHeight);
    other_.destroy(target_);
    EXPECT_TRUE(eventually([this] { return stops_ == 1; }));
    canvas_->redraw({0, 0, targetWidth, targetHeight});
    EXPECT_TRUE(shows(5, 5, 0x102030)) << "the last picture stays";
    // A stream on what is gone fails to start.
    std::optional<CaptureError> failure;
    const auto late = capture_.makeStream(capture_.makeFilter(target_), configuration_, {});
    late->startCapture([&](const std::optional<CaptureError>& error) { failure = error; });
    EXPECT_TRUE(eventually([&] { return failure.has_value(); }));
    EXPECT_EQ(stops_, 1);
}

// Both ways of watching: every change at high rates, single changes at low ones.
class CaptureRateTest : public CaptureTest, public testing::WithParamInterface<double> {};

TEST_P(CaptureRateTest, DeliversTheLastChangeOfABurstWithinTheRate) {
    show(targetWidth, targetHeight, GetParam());
    const int before = frames_;
    for (std::uint32_t i = 1; i <= 50; ++i) {
        fill(i, {0, 0, 10, 10});
    }
    EXPECT_TRUE(shows(5, 5, 50));
    EXPECT_LE(frames_ - before, 10);
    fill(0xABCDEF, {50, 50, 10, 10});
    EXPECT_TRUE(shows(55, 55, 0xABCDEF));
}

INSTANTIATE_TEST_SUITE_P(Rates, CaptureRateTest, testing::Values(0.05, 0.2));

TEST_F(CaptureTest, ANewRateHoldsForTheRunningStream) {
    show(targetWidth, targetHeight, 600);
    fill(0x111111, {0, 0, 10, 10});
    configuration_.minimumFrameInterval = {10, 600};
    stream_->updateConfiguration(configuration_, {});
    EXPECT_TRUE(shows(5, 5, 0x111111));
    fill(0x222222, {0, 0, 10, 10});
    EXPECT_TRUE(shows(5, 5, 0x222222));
}

TEST_F(CaptureTest, DecorationsBlendOnceHoweverOftenThePictureChanges) {
    show(targetWidth, targetHeight);
    auto& item = canvas_->addItem();
    item.rect = {0, targetHeight - 26, 26, 26};
    item.image = DecorationImage(connection(), formats_,
                                 {FilledRoundedRect{{0, 0, 26, 26}, 0, {0, 0, 0, 0.5}}}, 26, 26);
    item.hidden = false;
    canvas_->redraw(item.rect);
    for (std::uint32_t i = 0; i < 5; ++i) {
        fill(0x808080 + i, {0, 0, targetWidth, targetHeight});
        EXPECT_TRUE(shows(100, 5, 0x808080 + i));
        const std::uint32_t blended = pixel(13, targetHeight - 13) & 0xFF;
        EXPECT_NEAR(blended, 0x40, 3);
    }
    item.hidden = true;
    canvas_->redraw(item.rect);
    EXPECT_TRUE(shows(13, targetHeight - 13, 0x808084));
}

TEST_F(CaptureTest, AFrozenPanelKeepsItsPictureWithoutUs) {
    show(targetWidth, targetHeight);
    EXPECT_TRUE(shows(5, 5, 0x102030));
    stream_->stopCapture({});
    canvas_->freeze();
    dispatch(); // the server has it before the other client goes on
    fill(0xEE0000, {0, 0, targetWidth, targetHeight});
    // Covered and uncovered again: the server restores the frozen picture, not the present one.
    other_.destroy(other_.show({0, 0, 800, 600}, true));
    EXPECT_EQ(pixel(5, 5), 0x102030U);
}

TEST_F(CaptureTest, ListsWhatCanBeCapturedAndTakesStills) {
    other_.setText(target_, XCB_ATOM_WM_NAME, XCB_ATOM_STRING, "target");
    std::optional<ScreenCapture::ShareableContent> content;
    capture_.getShareableContent(false, false, [&](auto answer) { content = std::move(answer); });
    EXPECT_FALSE(content) << "never inside the call";
    ASSERT_TRUE(eventually([&] { return content.has_value(); }));
    EXPECT_TRUE(std::ranges::any_of(content->windows, [&](const CaptureWindow& window) {
        return window.windowID == target_ && window.title == "target";
    }));
    for (const auto& [window, works] : {std::pair{target_, true}, {xcb_window_t{0x1FFFFFF0}, false}}) {
        std::optional<ScreenCapture::Still> still;
        capture_.captureImage(capture_.makeFilter(window), {},
                              [&](auto answer) { still = std::move(answer); });
        ASSERT_TRUE(eventually([&] { return still.has_value(); }));
        EXPECT_EQ(still->image != nullptr, works);
        EXPECT_EQ(still->error.has_value(), !works);
    }
}

} // namespace

} // namespace skylet::test
