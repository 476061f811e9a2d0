// Input on an overlay: the time from the user's event to the target's own.
#include "Benchmarks.h"
#include "Measures.h"
#include "Receiver.h"
#include "Stage.h"
#include "harness/SkyletProgram.h"
#include "harness/Wait.h"

#include <iostream>

namespace skylet::bench {

namespace {

using desktop::eventually;

struct Times {
    std::vector<double> first, repeated, motion, wheel;
};

class Session {
  public:
    Session(Stage& stage, Receiver& receiver) : x_(stage.x()), receiver_(receiver) {}

    void measure(desktop::Rectangle overlay, Times& times) {
        const int x = overlay.x + overlay.width / 3;
        const int y = overlay.y + overlay.height / 3;
        x_.movePointer(x, y);
        // Long enough for the target to be let go of.
        receiver_.drain(1.4);
        time(times.first, XCB_BUTTON_PRESS, [&] { x_.button(1, true); });
        for (int step = 1; step <= 10; ++step) {
            time(times.motion, XCB_MOTION_NOTIFY, [&] { x_.movePointer(x + step * 5, y + step * 3); });
        }
        x_.button(1, false);
        receiver_.drain(0.05);
        for (int count = 0; count < 5; ++count) {
            time(times.repeated, XCB_BUTTON_PRESS, [&] { x_.button(1, true); });
            x_.button(1, false);
            receiver_.drain(0.05);
        }
        for (int count = 0; count < 5; ++count) {
            time(times.wheel, XCB_BUTTON_PRESS, [&] {
                x_.button(5, true);
                x_.button(5, false);
            });
            receiver_.drain(0.05);
        }
    }

  private:
    template <class Act>
    void time(std::vector<double>& times, std::uint8_t type, Act act) {
        const std::int64_t start = now();
        act();
        if (const auto came = receiver_.next(type)) {
            times.push_back(static_cast<double>(*came - start) / 1e6);
        } else {
            std::cerr << "an event did not arrive" << std::endl;
        }
    }

    desktop::XSession& x_;
    Receiver& receiver_;
};

} // namespace

void benchInput(Stage& stage, const Options& options) {
    stage.host().stop();
    {
        Receiver receiver(stage.desktop().environment().at("DISPLAY"));
        receiver.drain(0.5);
        desktop::SkyletProgram program(stage.desktop());
        const bool floats = program.waitUntilLaunched() && program.pin(receiver.window()) && [&] {
            stage.activateOther();
            return eventually([&] { return program.overlayInFront().has_value(); });
        }();
        Times times;
        if (floats) {
            Session session(stage, receiver);
            const auto overlay = stage.x().geometry(program.overlayInFront().value_or(XCB_NONE));
            for (int round = 0; round < (options.quick ? 5 : 20); ++round) {
                session.measure(overlay.value_or(desktop::Rectangle{}), times);
            }
        } else {
            std::cerr << "no overlay floats:\n" << program.logText();
        }
        std::cout << "\nFrom an event on the overlay to the target's own, ms\n";
        printRow({"", "median", "p90"});
        const auto line = [](const std::string& name, const std::vector<double>& values) {
            printRow({name, formatted(median(values), 2), formatted(quantile(values, 0.9), 2)});
        };
        line("first press, with the focus lead", times.first);
        line("further presses", times.repeated);
        line("motion in a drag", times.motion);
        line("wheel clicks", times.wheel);
    }
    stage.restartHost();
}

} // namespace skylet::bench
