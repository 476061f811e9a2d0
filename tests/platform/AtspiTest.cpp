#include "platform/ChildProcess.h"
#include "platform/ServerTest.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/x11/X11WorkerDesktop.h"

#include <QDBusConnection>
#include <QStandardPaths>

#include <csignal>
#include <functional>
#include <gtest/gtest.h>
#include <optional>
#include <thread>

namespace skylet::test {

namespace {

using platform::AXElementRef;
using platform::ProcessID;
using platform::x11::X11WorkerDesktop;

// An X server, a message bus and the accessibility bus, switched on, and what a worker thread has of them.
class AtspiTest : public ServerTest {
  protected:
    AtspiTest() {
        bus_.emplace();
        session_ = QDBusConnection::connectToBus(QString::fromStdString(bus_->address()), sessionName);
        // Whoever asks first starts it, as sessions do at login.
        session_.call(
            QDBusMessage::createMethodCall(QStringLiteral("org.a11y.Bus"), QStringLiteral("/org/a11y/bus"),
                                           QStringLiteral("org.a11y.Bus"), QStringLiteral("GetAddress")));
        trust_.emplace(session_);
        trust_->enable();
        EXPECT_TRUE(eventually([&] { return trust_->isTrusted(); }));
        auto opened = X11WorkerDesktop::open({}, mainQueue_, session_);
        desktop_ = std::move(opened.desktop);
    }
    ~AtspiTest() override {
        application_.reset();
        desktop_.reset();
        trust_.reset();
        session_ = QDBusConnection(QStringLiteral("none"));
        QDBusConnection::disconnectFromBus(sessionName);
    }

    // Runs on a thread without an event loop, as the scroller's queue is.
    static void onWorker(const std::function<void()>& work) { std::thread(work).join(); }

    void start(const std::vector<std::string>& command) { application_.emplace(command); }
    [[nodiscard]] ProcessID pid() const { return application_ ? application_->pid() : ProcessID{0}; }

    [[nodiscard]] platform::Accessibility& ax() { return desktop_->accessibility(); }
    [[nodiscard]] std::vector<AXElementRef> list(const AXElementRef& element, const char* attribute) {
        const auto result = ax().copyAttributeValue(element, attribute);
        const auto* elements = result.get<std::vector<AXElementRef>>();
        return elements != nullptr ? *elements : std::vector<AXElementRef>();
    }
    [[nodiscard]] std::vector<AXElementRef> areas() {
        std::vector<AXElementRef> result;
        for (const AXElementRef& window : list(ax().createApplication(pid()), "AXWindows")) {
            for (const AXElementRef& area : list(window, "AXChildren")) {
                result.push_back(area);
            }
        }
        return result;
    }
    [[nodiscard]] AXElementRef barOf(const AXElementRef& area) {
        const auto result = ax().copyAttributeValue(area, "AXVerticalScrollBar");
        const auto* bar = result.get<AXElementRef>();
        return bar != nullptr ? *bar : nullptr;
    }
    [[nodiscard]] double valueOf(const AXElementRef& bar) {
        const auto result = ax().copyAttributeValue(bar, "AXValue");
        const auto* value = result.get<double>();
        return value != nullptr ? *value : -1;
    }
    [[nodiscard]] platform::Rect frameOf(const AXElementRef& element) {
        const auto position = ax().copyAttributeValue(element, "AXPosition");
        const auto size = ax().copyAttributeValue(element, "AXSize");
        const auto* origin = position.get<platform::Point>();
        const auto* extent = size.get<platform::Size>();
        return origin != nullptr && extent != nullptr
                   ? platform::Rect{origin->x, origin->y, extent->width, extent->height}
                   : platform::Rect{};
    }
    // Waits until the application's first area can be driven.
    [[nodiscard]] bool waitForAreas(std::vector<AXElementRef>& found) {
        return eventually([&] {
            onWorker([&] { found = areas(); });
            return !found.empty();
        });
    }
    // Moves every area's bar through its range and checks that it follows.
    void expectDrivable(const std::vector<AXElementRef>& found) {
        onWorker([&] {
            for (const AXElementRef& area : found) {
                const AXElementRef bar = barOf(area);
                ASSERT_NE(bar, nullptr);
                EXPECT_EQ(ax().isAttributeSettable(bar, "AXValue"), std::pair(0, true));
                for (const double value : {0.25, 0.5, 1.0, 0.5, 0.0}) {
                    EXPECT_EQ(ax().setAttributeValue(bar, "AXValue", value), 0);
                    EXPECT_NEAR(valueOf(bar), value, 0.02);
                }
            }
        });
    }

    TemporaryDirectory home_;
    Environment homeVariable_{"HOME", home_.path()};
    Environment config_{"XDG_CONFIG_HOME", home_.path()};
    Environment runtime_{"XDG_RUNTIME_DIR", home_.path()};
    std::optional<PrivateBus> bus_;
    QDBusConnection session_{QStringLiteral("none")};
    std::optional<platform::qt::AccessibilityTrust> trust_;
    platform::qt::QtMainQueue mainQueue_;
    std::unique_ptr<X11WorkerDesktop> desktop_;
    std::optional<ChildProcess> application_;

  private:
    const QString sessionName = QStringLiteral("test-session");
};

TEST_F(AtspiTest, DrivesWhatQtShows) {
    start({SKYLET_SCROLLED_TEXT});
    std::vector<AXElementRef> found;
    ASSERT_TRUE(waitForAreas(found));
    ASSERT_EQ(found.size(), 1U) << "what is behind a tab is not there";
    onWorker([&] {
        const auto frame = frameOf(found.front());
        EXPECT_GE(frame.x, 100);
        EXPECT_GT(frame.y, 90);
        EXPECT_NEAR(frame.maxX(), 580, 10);
        EXPECT_NEAR(frame.maxY(), 410, 10);
    });
    expectDrivable(found);
}

struct Demo {
    const char* program;
    std::vector<std::string> arguments;
};

class AtspiDemoTest : public AtspiTest, public testing::WithParamInterface<Demo> {};

TEST_P(AtspiDemoTest, DrivesWhatGtkShows) {
    if (QStandardPaths::findExecutable(QString::fromLatin1(GetParam().program)).isEmpty()) {
        GTEST_SKIP() << GetParam().program << " is not installed";
    }
    std::vector<std::string> command{GetParam().program};
    command.insert(command.end(), GetParam().arguments.begin(), GetParam().arguments.end());
    start(command);
    std::vector<AXElementRef> found;
    ASSERT_TRUE(waitForAreas(found));
    onWorker([&] {
        for (const AXElementRef& window : list(ax().createApplication(pid()), "AXWindows")) {
            const auto outer = frameOf(window);
            for (const AXElementRef& area : list(window, "AXChildren")) {
                const auto frame = frameOf(area);
                EXPECT_GE(frame.x, outer.x - 1);
                EXPECT_GE(frame.y, outer.y - 1);
                EXPECT_LE(frame.maxX(), outer.maxX() + 1);
                EXPECT_LE(frame.maxY(), outer.maxY() + 1);
                RecordProperty("area", std::to_string(frame.width) + "x" + std::to_string(frame.height));
            }
        }
    });
    expectDrivable(found);
}

INSTANTIATE_TEST_SUITE_P(Toolkits, AtspiDemoTest,
                         testing::Values(Demo{"gtk3-demo", {"--run=textview"}},
                                         Demo{"gtk4-demo", {"--run=textview"}}),
                         [](const auto& which) { return which.index == 0 ? "Gtk3" : "Gtk4"; });

TEST_F(AtspiTest, GivesUpAnApplicationThatDoesNotAnswer) {
    start({SKYLET_SCROLLED_TEXT});
    std::vector<AXElementRef> found;
    ASSERT_TRUE(waitForAreas(found));
    AXElementRef bar;
    onWorker([&] { bar = barOf(found.front()); });
    ASSERT_NE(bar, nullptr);
    kill(pid(), SIGSTOP);
    onWorker([&] {
        EXPECT_EQ(ax().copyAttributeValue(bar, "AXValue").error, platform::AXError::cannotComplete);
        EXPECT_EQ(ax().setAttributeValue(bar, "AXValue", 0.5), platform::AXError::cannotComplete);
        EXPECT_TRUE(areas().empty());
    });
    kill(pid(), SIGCONT);
    EXPECT_TRUE(eventually([&] {
        double value = -1;
        onWorker([&] { value = valueOf(bar); });
        return value == 0;
    }));
}

TEST_F(AtspiTest, SaysWhatIsGone) {
    start({SKYLET_SCROLLED_TEXT});
    std::vector<AXElementRef> found;
    ASSERT_TRUE(waitForAreas(found));
    application_->end(SIGKILL);
    onWorker([&] {
        const AXElementRef bar = barOf(found.front());
        EXPECT_NE(ax().copyAttributeValue(bar, "AXValue").error, platform::AXError::success);
        EXPECT_NE(ax().setAttributeValue(bar, "AXValue", 0.5), platform::AXError::success);
    });
}

} // namespace

} // namespace skylet::test
