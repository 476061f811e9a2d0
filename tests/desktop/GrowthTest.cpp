// That pinning and releasing for a long time leaves nothing behind: memory, descriptors, resources of the X
// server.
#include "DesktopTest.h"

namespace skylet::desktop {
namespace {

// A sanitizer keeps for a while what was let go of.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr bool tellsMemory = false;
#else
constexpr bool tellsMemory = true;
#endif

class FullGrowthTest : public DesktopTest {};

TEST_F(FullGrowthTest, FiveHundredPinsLeaveNothing) {
    constexpr int warmUp = 60;
    constexpr int rounds = 500;
    constexpr long allowedMemory = 2048; // kB, what the allocator may keep in pieces
    PREPARE(openDesktop());
    PREPARE(openTarget());
    PREPARE(launch());
    PREPARE(bringToFront(target_));

    int pinned = 0;
    const auto pinAndRelease = [&](bool withOverlay) {
        skylet().forgetLog();
        skylet().pressShortcut();
        ASSERT_TRUE(skylet().waitForLog("togglePin: Pinned 'target'")) << "round " << pinned;
        if (withOverlay) {
            PREPARE(bringToFront(cover_));
            ASSERT_TRUE(eventually([&] { return skylet().overlayInFront().has_value(); }));
            PREPARE(bringToFront(target_));
        }
        skylet().pressShortcut();
        ASSERT_TRUE(skylet().waitForLog("togglePin: Unpinned 'target'")) << "round " << pinned;
        ++pinned;
    };
    // Every tenth overlay is also shown.
    for (int round = 0; round < warmUp; ++round) {
        PREPARE(pinAndRelease(round % 10 == 0));
    }
    const long memory = skylet().proportionalMemory();
    const int descriptors = skylet().openDescriptors();
    const auto resources = x().resourcesOf(skylet().process().pid());
    ASSERT_GT(memory, 0);
    ASSERT_FALSE(resources.empty());
    for (int round = 0; round < rounds; ++round) {
        PREPARE(pinAndRelease(round % 10 == 0));
    }
    // What is let go of may take a moment to be let go of in the server.
    EXPECT_TRUE(eventually([&] { return x().resourcesOf(skylet().process().pid()) == resources; }));
    EXPECT_EQ(x().resourcesOf(skylet().process().pid()), resources);
    EXPECT_EQ(skylet().openDescriptors(), descriptors);
    if (tellsMemory) {
        EXPECT_LE(skylet().proportionalMemory(), memory + allowedMemory);
    }
}

} // namespace
} // namespace skylet::desktop
