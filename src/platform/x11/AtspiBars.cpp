#include "platform/x11/AtspiBars.h"

#include "platform/Accessibility.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

namespace skylet::platform::x11 {

namespace {

// What a value may be off by and still be the same, as a share of the range.
constexpr double sameShare = 1e-6;
// The space that browsers leave around a document's content, in pixels.
constexpr double documentMargin = 8;
// Of a document, at most so many parts are asked where they are: the first ones and the last.
constexpr std::size_t maximumParts = 16;
// Steps that one movement may take; what is missing then comes with the next one.
constexpr int maximumSteps = 16;
// How many lines a page has, until a page step was seen.
constexpr double linesPerPage = 10;
// An application may be late; only what has not moved for so long is at its end.
constexpr std::chrono::seconds lateness(1);
// Bars with a range of this and more count whole units, and round to them.
constexpr double wholeUnits = 10;

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
        return readDocument(area).range;
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
            range.end = *known->second.end;
        }
    }
    range.end = std::max(range.end, range.current);
    return range;
}

AtspiBars::Document AtspiBars::readDocument(const AtspiScrollArea& area) {
    Document document;
    const QDBusMessage list = bus_.call(AtspiBus::method(area.bar, "Accessible", "GetChildren"));
    auto children = AtspiReply::children(list);
    if (!children || children->empty()) {
        document.range.error = children ? AXError::noValue : AtspiReply::error(list);
        if (document.range.error == AXError::success) {
            document.range.error = AXError::failure;
        }
        return document;
    }
    if (children->size() > maximumParts) {
        children->erase(children->begin() + maximumParts - 1, children->end() - 1);
    }
    std::vector<QDBusMessage> questions{AtspiBus::extents(area.bar)};
    for (const AtspiRef& child : *children) {
        questions.push_back(AtspiBus::extents(child));
    }
    const auto answers = bus_.callAll(questions);
    const auto view = AtspiReply::extents(answers.front());
    double top = std::numeric_limits<double>::max();
    double bottom = std::numeric_limits<double>::lowest();
    for (std::size_t i = 0; i < children->size(); ++i) {
        const auto part = AtspiReply::extents(answers[i + 1]);
        if (!part || part->height <= 0) {
            continue;
        }
        top = std::min(top, double(part->y));
        bottom = std::max(bottom, double(part->y) + part->height);
        if (part->height > document.extents.height) {
            document.content = (*children)[i];
            document.extents = *part;
        }
    }
    if (!view || document.extents.height <= 0) {
        document.range.error = AXError::failure;
        return document;
    }
    document.range.maximum = std::max(0.0, bottom - top + 2 * documentMargin - view->height);
    document.range.end = document.range.maximum;
    document.range.current = view->y + documentMargin - top;
    return document;
}

std::pair<int, double> AtspiBars::read(const AtspiScrollArea& area) {
    const Range range = readRange(area);
    return {range.error, range.error == AXError::success ? range.normalised() : 0.0};
}

int AtspiBars::write(const AtspiScrollArea& area, double value) {
    if (area.drive == AtspiDrive::document) {
        return writeDocument(area, value);
    }
    const Range range = readRange(area);
    if (range.error != AXError::success) {
        return range.error;
    }
    return area.drive == AtspiDrive::actions ? writeByActions(area, range, value)
                                             : writeValue(area, range, value);
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

AtspiBars::End& AtspiBars::endOf(const AtspiScrollArea& area, double maximum) {
    End& end = ends_[key(area)];
    if (end.maximum != maximum) {
        end = {.maximum = maximum, .end = {}, .stuckSince = {}};
    }
    return end;
}

void AtspiBars::noteStuck(End& end, double place) {
    const Time now = std::chrono::steady_clock::now();
    if (now - end.stuckSince.value_or(now) >= lateness) {
        end.end = place;
    } else if (!end.stuckSince) {
        end.stuckSince = now;
    }
}

void AtspiBars::learnEnd(const AtspiScrollArea& area, const Range& before, double wanted) {
    const auto after = AtspiReply::real(bus_.call(AtspiBus::property(area.bar, "Value", "CurrentValue")));
    const double length = before.maximum - before.minimum;
    const double same = length >= wholeUnits ? 1 : sameShare * length;
    End& end = endOf(area, before.maximum);
    if (!after || wanted <= before.current + same || *after >= wanted - same) {
        end.stuckSince.reset();
    } else if (*after > before.current + same) {
        end.end = *after;
    } else {
        noteStuck(end, *after);
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
            noteStuck(endOf(area, after.maximum), after.current);
        }
        range = after;
        if (moved <= 0 || isPast) {
            break;
        }
        (isPage ? pageStep : lineStep) = moved;
    }
    return AXError::success;
}

int AtspiBars::writeDocument(const AtspiScrollArea& area, double value) {
    const Document document = readDocument(area);
    if (document.range.error != AXError::success) {
        return document.range.error;
    }
    constexpr std::uint32_t screenCoordinates = 0;
    const double moved = value * document.range.maximum - document.range.current;
    const int y = document.extents.y - static_cast<int>(std::lround(moved));
    const QDBusMessage reply = bus_.call(AtspiBus::method(document.content, "Component", "ScrollToPoint",
                                                          {screenCoordinates, document.extents.x, y}));
    const int error = AtspiReply::error(reply);
    const bool isDone = error == AXError::success && reply.arguments().value(0).toBool();
    return error != AXError::success ? error : isDone ? AXError::success : AXError::failure;
}

} // namespace skylet::platform::x11
