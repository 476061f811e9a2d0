#include "input/ScrollRouteProbe.h"

#include "foundation/Text.h"
#include "input/AXAttributes.h"
#include "windows/WindowLevelManager.h"

#include <array>
#include <charconv>

namespace skylet {

namespace {

using platform::AXElementRef;

// The share of the range that the bar is moved by, and the distance from the end within which it is moved up.
constexpr double step = 0.1;
constexpr double nearEnd = 0.15;

// Four decimals with a point, whatever the locale.
std::string fourDecimals(double value) {
    std::array<char, 400> text{}; // enough for any double
    const auto end = std::to_chars(text.begin(), text.end(), value, std::chars_format::fixed, 4).ptr;
    return {text.data(), end};
}

std::string fourDecimals(std::optional<double> value) {
    return value ? fourDecimals(*value) : "nil";
}

} // namespace

void ScrollRouteProbe::say(const std::string& message) {
    wplog(log_, [&] { return "axprobe: " + message; });
}

AXElementRef ScrollRouteProbe::findBar(platform::ProcessID pid, platform::WindowID windowID) {
    const AXElementRef window = WindowLevelManager::axWindow(accessibility_, windowServer_, pid, windowID);
    if (window == nullptr) {
        say("could not find the AX window — cannot proceed");
        return nullptr;
    }
    accessibility_.setMessagingTimeout(window, AXAttributes::messagingTimeout);
    const auto areas = AXAttributes::collectScrollAreas(accessibility_, window);
    say("found " + std::to_string(areas.size()) + " AXScrollArea(s)");
    if (areas.empty()) {
        say("RESULT — no scroll area in this window. Nothing to drive.");
        return nullptr;
    }
    AXElementRef bar = AXAttributes::copyElement(accessibility_, areas.front(), "AXVerticalScrollBar");
    if (bar == nullptr) {
        say("RESULT — scroll area has no vertical scroll bar.");
    }
    return bar;
}

std::optional<ScrollRouteProbe::Attempt>
ScrollRouteProbe::run(platform::ProcessID pid, platform::WindowID windowID, const std::string& frontmost) {
    say("START pid=" + std::to_string(pid) + " wid=" + std::to_string(windowID) + " frontmost=" + frontmost);
    const AXElementRef bar = findBar(pid, windowID);
    if (bar == nullptr) {
        return std::nullopt;
    }
    const auto [queryError, answer] = accessibility_.isAttributeSettable(bar, "AXValue");
    const bool isSettable = queryError == platform::AXError::success && answer;
    const auto value = AXAttributes::copyNumber(accessibility_, bar, "AXValue");
    const auto minimum = AXAttributes::copyNumber(accessibility_, bar, "AXMinValue");
    const auto maximum = AXAttributes::copyNumber(accessibility_, bar, "AXMaxValue");
    say("scrollbar value=" + fourDecimals(value) + " min=" + fourDecimals(minimum) +
        " max=" + fourDecimals(maximum) + " settable=" + formatBool(isSettable) +
        " (err=" + std::to_string(queryError) + ")");
    if (!isSettable || !value) {
        say("RESULT — the scroll position is NOT settable. This route is closed.");
        return std::nullopt;
    }
    const double end = maximum.value_or(1.0);
    const double range = end - minimum.value_or(0.0);
    if (!(range > 0)) {
        say("RESULT — zero scroll range, nothing to move.");
        return std::nullopt;
    }
    const double target = end - nearEnd * range > *value ? *value + step * range : *value - step * range;
    const int error = accessibility_.setAttributeValue(bar, "AXValue", target);
    say("set value " + fourDecimals(*value) + " -> " + fourDecimals(target) +
        " result=" + std::to_string(error));
    return Attempt{.bar = bar, .valueBefore = *value, .frontmostBefore = frontmost};
}

void ScrollRouteProbe::conclude(const Attempt& attempt, const std::string& frontmost) {
    const auto after = AXAttributes::copyNumber(accessibility_, attempt.bar, "AXValue");
    const bool moved = after.value_or(attempt.valueBefore) != attempt.valueBefore;
    say("value after=" + fourDecimals(after) + " moved=" + formatBool(moved) + " frontmost=" + frontmost +
        " (was " + attempt.frontmostBefore + ")");
    if (!moved) {
        say("RESULT — the set was accepted but nothing moved. This route is closed.");
    } else if (frontmost != attempt.frontmostBefore) {
        say("RESULT — scrolled, but the frontmost app CHANGED. Focus was stolen.");
    } else {
        say("RESULT — SCROLLED, and focus did not move. This route WORKS.");
    }
}

} // namespace skylet
