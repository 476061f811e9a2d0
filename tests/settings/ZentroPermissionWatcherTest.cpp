#include "settings/ZentroPermissionWatcher.h"

#include "support/SimSettings.h"
#include "support/SimulatedDesktop.h"

#include <gtest/gtest.h>
#include <memory>

namespace skylet {
namespace {

using Watcher = ZentroPermissionWatcher;

class ZentroPermissionWatcherTest : public testing::Test {
  protected:
    void watch(const std::optional<std::string>& announcement = Watcher::accessibilityAnnouncement) {
        watcher = std::make_unique<Watcher>(Watcher::Services{desktop.mainQueue, notifications}, announcement,
                                            [this] {
                                                ++probes;
                                                return permitted;
                                            });
        changes = watcher->observeWillChange([this](bool next) {
            // Told before it happens.
            EXPECT_NE(watcher->isGranted(), next);
            told.push_back(next);
        });
    }
    void announce() { notifications.announce(Watcher::accessibilityAnnouncement); }

    sim::SimulatedDesktop desktop;
    sim::SimNotifications notifications;
    bool permitted = false;
    int probes = 0;
    std::vector<bool> told;
    std::unique_ptr<Watcher> watcher;
    platform::Subscription changes;
};

TEST_F(ZentroPermissionWatcherTest, KnowsTheStateFromTheStartAndTellsOnlyChanges) {
    permitted = true;
    watch();
    EXPECT_TRUE(watcher->isGranted());
    EXPECT_EQ(probes, 1);
    desktop.advance(3.5);
    EXPECT_EQ(probes, 4);
    EXPECT_TRUE(told.empty());
    permitted = false;
    desktop.advance(0.4);
    EXPECT_TRUE(watcher->isGranted());
    desktop.advance(0.2);
    EXPECT_FALSE(watcher->isGranted());
    permitted = true;
    notifications.becomeActive();
    EXPECT_EQ(told, (std::vector<bool>{false, true}));
}

TEST_F(ZentroPermissionWatcherTest, KeepsQuietAfterAnAnnouncement) {
    watch();
    desktop.advance(0.9);
    permitted = true;
    announce(); // quiet until 2.4
    desktop.advance(1.49);
    notifications.becomeActive();
    EXPECT_FALSE(watcher->isGranted());
    EXPECT_EQ(probes, 1) << "read although it could not be relied on";
    desktop.advance(0.02);
    EXPECT_TRUE(watcher->isGranted());
    EXPECT_EQ(probes, 2);
}

TEST_F(ZentroPermissionWatcherTest, TheFirstOfTwoAnnouncementsEndsTheQuiet) {
    watch();
    announce();
    desktop.advance(1.01);
    announce();
    permitted = true;
    desktop.advance(0.48);
    EXPECT_FALSE(watcher->isGranted());
    desktop.advance(0.02); // 1.51: the reading of the first one
    EXPECT_TRUE(watcher->isGranted());
    permitted = false;
    desktop.advance(0.5); // 2.01: polled, though the second one's quiet would last until 2.51
    EXPECT_FALSE(watcher->isGranted());
    permitted = true;
    desktop.advance(0.51); // 2.52: the second one's own reading
    EXPECT_TRUE(watcher->isGranted());
    EXPECT_EQ(told, (std::vector<bool>{true, false, true}));
}

TEST_F(ZentroPermissionWatcherTest, WithoutAnnouncementOnlyTimeAndActivationCount) {
    watch(std::nullopt);
    announce();
    permitted = true;
    desktop.advance(1.0);
    EXPECT_TRUE(watcher->isGranted());
}

TEST_F(ZentroPermissionWatcherTest, DoesNothingOnceReleased) {
    watch();
    announce();
    watcher.reset();
    desktop.advance(5);
    notifications.becomeActive();
    EXPECT_EQ(probes, 1);
}

} // namespace
} // namespace skylet
