#include "platform/x11/AtspiBars.h"

#include "platform/Accessibility.h"

#include <algorithm>
#include <cmath>

namespace skylet::platform::x11 {

namespace {

// What a value may be off by and still be the same, as a share of the range.
constexpr double sameShare = 1e-6;
// The space that browsers leave around a document's content, in pixels.
constexpr double documentMargin = 8;
// Steps that one movement may take; what is missing then comes with the next one.
constexpr int maximumSteps = 16;
// How many lines a page has, until a page step was seen.
constexpr double linesPerPage = 10;
constexpr int misses = 2; // an application may be late with its first answer

enum Action : int { lineUp = 0, lineDown = 1, pageUp = 2, pageDown = 3 };

QString key(const AtspiScrollArea& area) {
    return area.bar.bus + area.bar.path;
}

} // namespace

double AtspiBars::Range::normalised() const {
    return end > minimum ? std::clamp((current - minimum) / (end - minimum), 0.0, 1.0) : 0;
}

AtspiBars::Range AtspiBars::readRange(const AtspiScrollArea& area) {
    if (area.drive == AtspiDrive::document) {
        return readDocument(area);
    }
    const auto answers = bus_.callAll({AtspiBus::property(area.bar, "Value", "MinimumValue"),
                                       AtspiBus::property(area.bar, "Value", "MaximumValue"),
                                       AtspiBus::property(area.bar, "Value", "CurrentValue")});
    const auto minimum = AtspiReply::real(answers[0]);
    const auto maximum = AtspiReply::real(answers[1]);
    const auto current = AtspiReply::real(answers[2]);
    Range range;
    if (!minimum || !maximum || !current) {
        range.error = AXError::failure;
        for (const QDBusMessage& answer : answers) {
            if (const int error = AtspiReply::error(answer); error != AXError::success) {
                range.error = error;
            }
        }
        return range;
    }
    range.minimum = *minimum;
    range.maximum = *maximum;
    range.current = *current;
    range.end = *maximum;
    // The page is mostly counted in pixels, as the area is.
    if (area.includesPage && area.drive == AtspiDrive::value && *maximum - area.frame.height > *minimum) {
        range.end = *maximum - area.frame.height;
    }
    if (const auto known = ends_.find(key(area)); known != ends_.end()) {
        if (known->second.maximum != *maximum) {
            ends_.erase(known);
        } else if (known->second.end > *minimum) {
            range.end = known->second.end;
        }
    }
    range.end = std::max(range.end, range.current);
    return range;
}

AtspiBars::Range AtspiBars::readDocument(const AtspiScrollArea& area) {
    Range range;
    const QDBusMessage list = bus_.call(AtspiBus::method(area.bar, "Accessible", "GetChildren"));
    const auto children = AtspiReply::children(list);
    if (!children || children->empty()) {
        range.error = children ? AXError::noValue : AtspiReply::error(list);
        range.error = range.error == AXError::success ? AXError::failure : range.error;
        return range;
    }
    const auto answers = bus_.callAll({AtspiBus::extents(area.bar), AtspiBus::extents(children->front()),
                                       AtspiBus::extents(children->back())});
    const auto document = AtspiReply::extents(answers[0]);
    const auto first = AtspiReply::extents(answers[1]);
    const auto last = AtspiReply::extents(answers[2]);
    if (!document || !first || !last) {
        range.error = AXError::failure;
        return range;
    }
    const double height = double(last->y) + last->height - first->y + 2 * documentMargin;
    range.maximum = std::max(0.0, height - document->height);
    range.end = range.maximum;
    range.current = document->y + documentMargin - first->y;
    return range;
}

std::pair<int, double> AtspiBars::read(const AtspiScrollArea& area) {
    const Range range = readRange(area);
    return {range.error, range.error == AXError::success ? range.normalised() : 0.0};
}

int AtspiBars::write(const AtspiScrollArea& area, double value) {
    const Range range = readRange(area);
    if (range.error != AXError::success) {
        return range.error;
    }
    switch (area.drive) {
    case AtspiDrive::actions:
        return writeByActions(area, range, value);
    case AtspiDrive::document:
        return writeDocument(area, range, value);
    case AtspiDrive::value:
        break;
    }
    return writeValue(area, range, value);
}

int AtspiBars::writeValue(const AtspiScrollArea& area, const Range& before, double value) {
    // The very end is what the application takes it for.
    const double wanted =
        value >= 1 ? before.maximum : before.minimum + value * (before.end - before.minimum);
    const int error =
        AtspiReply::error(bus_.call(AtspiBus::setProperty(area.bar, "Value", "CurrentValue", wanted)));
    if (error == AXError::success) {
        learnEnd(area, before, wanted);
    }
    return error;
}

void AtspiBars::learnEnd(const AtspiScrollArea& area, const Range& before, double wanted) {
    const auto after = AtspiReply::real(bus_.call(AtspiBus::property(area.bar, "Value", "CurrentValue")));
    const double same = sameShare * (before.maximum - before.minimum);
    if (!after || wanted <= before.current || *after >= wanted - same) {
        return;
    }
    End& end = ends_[key(area)];
    if (end.maximum != before.maximum) {
        end = {.maximum = before.maximum, .end = before.minimum, .unmoved = 0};
    }
    if (*after > before.current + same || ++end.unmoved >= misses) {
        end.end = *after;
    }
}

int AtspiBars::writeByActions(const AtspiScrollArea& area, Range range, double value) {
    const double wanted = range.minimum + value * (range.end - range.minimum);
    const bool isDown = wanted > range.current;
    double lineStep = 0;
    double pageStep = 0;
    for (int i = 0; i < maximumSteps; ++i) {
        const double missing = std::abs(wanted - range.current);
        if (i > 0 && missing < lineStep / 2) {
            break;
        }
        const bool isPage = i > 0 && missing >= (pageStep > 0 ? pageStep : linesPerPage * lineStep);
        const int action = isPage ? (isDown ? pageDown : pageUp) : (isDown ? lineDown : lineUp);
        const int error =
            AtspiReply::error(bus_.call(AtspiBus::method(area.bar, "Action", "DoAction", {action})));
        const Range after = error == AXError::success ? readRange(area) : Range{.error = error};
        if (after.error != AXError::success) {
            return after.error;
        }
        const double moved = isDown ? after.current - range.current : range.current - after.current;
        const bool isPast = isDown ? after.current >= wanted : after.current <= wanted;
        if (moved <= 0 && isDown) {
            ends_[key(area)] = {.maximum = after.maximum, .end = after.current, .unmoved = misses};
        }
        range = after;
        if (moved <= 0 || isPast) {
            break;
        }
        (isPage ? pageStep : lineStep) = moved;
    }
    return AXError::success;
}

int AtspiBars::writeDocument(const AtspiScrollArea& area, const Range& range, double value) {
    const auto children =
        AtspiReply::children(bus_.call(AtspiBus::method(area.bar, "Accessible", "GetChildren")));
    if (!children || children->empty()) {
        return AXError::failure;
    }
    const auto answers = bus_.callAll({AtspiBus::extents(area.bar), AtspiBus::extents(children->front())});
    const auto document = AtspiReply::extents(answers[0]);
    const auto first = AtspiReply::extents(answers[1]);
    if (!document || !first) {
        return AXError::failure;
    }
    constexpr std::uint32_t screenCoordinates = 0;
    const int y = document->y + static_cast<int>(std::lround(documentMargin - value * range.maximum));
    const QDBusMessage reply = bus_.call(
        AtspiBus::method(children->front(), "Component", "ScrollToPoint", {screenCoordinates, first->x, y}));
    const int error = AtspiReply::error(reply);
    const bool isDone = error == AXError::success && reply.arguments().value(0).toBool();
    return error != AXError::success ? error : isDone ? AXError::success : AXError::failure;
}

} // namespace skylet::platform::x11
