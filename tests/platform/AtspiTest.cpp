#include "platform/ServerTest.h"
#include "platform/qt/AccessibilityTrust.h"
#include "platform/qt/QtMainQueue.h"
#include "platform/x11/X11WorkerDesktop.h"

#include <QStandardPaths>

#include <algorithm>
#include <thread>

namespace skylet::test {

namespace {

using namespace Qt::StringLiterals;
using platform::AXElementRef;
using platform::x11::X11WorkerDesktop;

// An X server, a message bus and the accessibility bus, switched on, and what a worker thread has of them.
class AtspiTest : public ServerTest {
  protected:
    AtspiTest() {
        // Whoever asks first starts it, as sessions do at login.
        session_.call(busCall(u"org.a11y.Bus"_s, u"/org/a11y/bus"_s, u"org.a11y.Bus"_s, u"GetAddress"_s));
        trust_.enable();
        EXPECT_TRUE(eventually([&] { return trust_.isTrusted(); }));
        desktop_ = X11WorkerDesktop::open({}, mainQueue_, session_).desktop;
    }

    // Runs on a thread without an event loop, as the scroller's queue is.
    static void onWorker(const std::function<void()>& work) { std::thread(work).join(); }

    // Waits until the application's first area can be driven; answers all of them.
    [[nodiscard]] std::vector<AXElementRef> start(const std::vector<std::string>& command) {
        application_.emplace(command);
        std::vector<AXElementRef> found;
        EXPECT_TRUE(eventually([&] {
            onWorker([&] { found = areas(); });
            return !found.empty();
        }));
        return found;
    }

    [[nodiscard]] platform::Accessibility& ax() { return desktop_->accessibility(); }
    template <class Value>
    [[nodiscard]] Value read(const AXElementRef& element, const char* attribute) {
        const auto result = ax().copyAttributeValue(element, attribute);
        const auto* value = result.template get<Value>();
        return value != nullptr ? *value : Value();
    }
    [[nodiscard]] std::vector<AXElementRef> windows() {
        return read<std::vector<AXElementRef>>(ax().createApplication(application_->pid()), "AXWindows");
    }
    [[nodiscard]] std::vector<AXElementRef> areas() {
        std::vector<AXElementRef> result;
        for (const AXElementRef& window : windows()) {
            for (const AXElementRef& area : read<std::vector<AXElementRef>>(window, "AXChildren")) {
                result.push_back(area);
            }
        }
        return result;
    }
    [[nodiscard]] AXElementRef barOf(const AXElementRef& area) {
        return read<AXElementRef>(area, "AXVerticalScrollBar");
    }
    [[nodiscard]] platform::Rect frameOf(const AXElementRef& element) {
        const auto origin = read<platform::Point>(element, "AXPosition");
        const auto size = read<platform::Size>(element, "AXSize");
        return {origin.x, origin.y, size.width, size.height};
    }
    // An application that is busy, most of all with its own start, misses the time that a call waits.
    template <class Call>
    [[nodiscard]] static int untilAnswered(Call call) {
        constexpr int attempts = 40; // a quarter of a second each
        int error = platform::AXError::cannotComplete;
        for (int i = 0; i < attempts && error == platform::AXError::cannotComplete; ++i) {
            error = call();
        }
        return error;
    }
    // Moves every area's bar through its range and checks that it follows.
    void expectDrivable(const std::vector<AXElementRef>& found) {
        onWorker([&] {
            for (const AXElementRef& area : found) {
                const AXElementRef bar = barOf(area);
                ASSERT_NE(bar, nullptr);
                EXPECT_EQ(ax().isAttributeSettable(bar, "AXValue"), std::pair(0, true));
                for (const double value : {0.25, 0.5, 1.0, 0.5, 0.0}) {
                    EXPECT_EQ(untilAnswered([&] { return ax().setAttributeValue(bar, "AXValue", value); }),
                              0);
                    double reached = -1;
                    EXPECT_EQ(untilAnswered([&] {
                                  const auto result = ax().copyAttributeValue(bar, "AXValue");
                                  reached = result.get<double>() != nullptr ? *result.get<double>() : -1;
                                  return result.error;
                              }),
                              0);
                    EXPECT_NEAR(reached, value, 0.02);
                }
            }
        });
    }

    TemporaryDirectory home_;
    Environment homeVariable_{"HOME", home_.path()};
    Environment config_{"XDG_CONFIG_HOME", home_.path()};
    Environment runtime_{"XDG_RUNTIME_DIR", home_.path()};
    PrivateBus bus_;
    QDBusConnection session_ = bus_.connect();
    platform::qt::AccessibilityTrust trust_{session_};
    platform::qt::QtMainQueue mainQueue_;
    std::unique_ptr<X11WorkerDesktop> desktop_;
    std::optional<ChildProcess> application_;
};

TEST_F(AtspiTest, DrivesWhatQtShows) {
    const auto found = start({SKYLET_SCROLLED_TEXT});
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

class AtspiDemoTest : public AtspiTest, public testing::WithParamInterface<const char*> {};

TEST_P(AtspiDemoTest, DrivesWhatGtkShows) {
    if (QStandardPaths::findExecutable(QString::fromLatin1(GetParam())).isEmpty()) {
        GTEST_SKIP() << GetParam() << " is not installed";
    }
    const auto found = start({GetParam(), "--run=textview"});
    onWorker([&] {
        const auto all = windows();
        for (const AXElementRef& area : found) {
            const auto frame = frameOf(area);
            EXPECT_TRUE(std::ranges::any_of(all,
                                            [&](const AXElementRef& window) {
                                                const auto outer = frameOf(window);
                                                return frame.x >= outer.x - 1 && frame.y >= outer.y - 1 &&
                                                       frame.maxX() <= outer.maxX() + 1 &&
                                                       frame.maxY() <= outer.maxY() + 1;
                                            }))
                << frame.x << "," << frame.y << " " << frame.width << "x" << frame.height;
        }
    });
    expectDrivable(found);
}

INSTANTIATE_TEST_SUITE_P(Toolkits, AtspiDemoTest, testing::Values("gtk3-demo", "gtk4-demo"),
                         [](const auto& which) { return which.index == 0 ? "Gtk3" : "Gtk4"; });

TEST_F(AtspiTest, GivesUpAnApplicationThatDoesNotAnswerAndSaysWhatIsGone) {
    const auto found = start({SKYLET_SCROLLED_TEXT});
    AXElementRef bar;
    onWorker([&] { bar = barOf(found.front()); });
    ASSERT_NE(bar, nullptr);
    kill(application_->pid(), SIGSTOP);
    onWorker([&] {
        EXPECT_EQ(ax().copyAttributeValue(bar, "AXValue").error, platform::AXError::cannotComplete);
        EXPECT_EQ(ax().setAttributeValue(bar, "AXValue", 0.5), platform::AXError::cannotComplete);
        EXPECT_TRUE(areas().empty());
    });
    kill(application_->pid(), SIGCONT);
    EXPECT_TRUE(eventually([&] {
        bool isBackAtItsTop = false;
        onWorker([&] {
            const auto value = ax().copyAttributeValue(bar, "AXValue");
            isBackAtItsTop = value.get<double>() != nullptr && *value.get<double>() == 0;
        });
        return isBackAtItsTop;
    }));
    application_->end(SIGKILL);
    onWorker([&] {
        EXPECT_NE(ax().copyAttributeValue(bar, "AXValue").error, platform::AXError::success);
        EXPECT_NE(ax().setAttributeValue(bar, "AXValue", 0.5), platform::AXError::success);
    });
}

} // namespace

} // namespace skylet::test
