#include "platform/x11/AtspiScrollAreas.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <utility>

namespace skylet::platform::x11 {

namespace {

// AtspiRole
constexpr std::uint32_t roleFiller = 20;
constexpr std::uint32_t roleScrollBar = 48;
constexpr std::uint32_t roleDocumentWeb = 95;
// Lists of any length and documents of other programs: they hold no scroll bars, and asking for all their
// children would make the application create them.
constexpr std::array<std::uint32_t, 8> contentRoles = {
    31 /* list */,     55 /* table */,       65 /* tree */,          66 /* tree table */,
    98 /* list box */, 92 /* spreadsheet */, 94 /* text document */, 34 /* menu bar */};

// Bits of AtspiStateType
constexpr std::uint64_t stateHorizontal = std::uint64_t{1} << 14;
constexpr std::uint64_t stateShowing = std::uint64_t{1} << 25;
constexpr std::uint64_t stateVertical = std::uint64_t{1} << 29;
constexpr std::uint64_t stateVisible = std::uint64_t{1} << 30;

constexpr int maximumDepth = 24; // toolkits nest twice as deep as what the user sees
constexpr std::size_t maximumNodes = 4000;
constexpr std::size_t maximumAreas = 8;
constexpr double frameTolerance = 5.0;
// Line up, line down, page up, page down: LibreOffice, whose bars jump to the start at any Value.
constexpr double stepActions = 4;

struct Node {
    AtspiRef ref;
    std::size_t parent = 0; // the window is its own
    std::uint32_t role = 0;
};

struct Window {
    AtspiRef ref;
    Point offset;                  // from the toolkit's coordinates to root coordinates
    std::uint64_t shownStates = 0; // that an area has when it is shown
};

bool isNear(const AtspiExtents& extents, Rect rect) {
    return std::abs(extents.x - rect.x) < frameTolerance && std::abs(extents.y - rect.y) < frameTolerance &&
           std::abs(extents.width - rect.width) < frameTolerance &&
           std::abs(extents.height - rect.height) < frameTolerance;
}

bool isSameSize(const AtspiExtents& extents, Rect rect) {
    return std::abs(extents.width - rect.width) < frameTolerance &&
           std::abs(extents.height - rect.height) < frameTolerance;
}

struct Candidate {
    AtspiRef ref;
    AtspiRef application;
    std::optional<AtspiExtents> extents;
    std::optional<QString> name;
};

std::vector<Candidate> candidates(AtspiBus& bus, ProcessID pid) {
    std::vector<Candidate> result;
    for (const AtspiRef& application : bus.applications(pid)) {
        const auto children =
            AtspiReply::children(bus.call(AtspiBus::method(application, "Accessible", "GetChildren")));
        for (const AtspiRef& child : children.value_or(std::vector<AtspiRef>())) {
            result.push_back({child, application, {}, {}});
        }
    }
    std::vector<QDBusMessage> questions;
    for (const Candidate& one : result) {
        questions.push_back(AtspiBus::extents(one.ref));
        questions.push_back(AtspiBus::property(one.ref, "Accessible", "Name"));
    }
    const auto answers = bus.callAll(questions);
    for (std::size_t i = 0; i < result.size(); ++i) {
        result[i].extents = AtspiReply::extents(answers[2 * i]);
        result[i].name = AtspiReply::text(answers[2 * i + 1]);
    }
    std::erase_if(result, [](const Candidate& one) { return !one.extents; });
    return result;
}

// Toolkits that do not know where their windows are report them at the origin: there the size has to do,
// with the title where several have it.
const Candidate* matchBySize(const std::vector<Candidate>& all, const AtspiTarget& target) {
    std::vector<const Candidate*> alike;
    for (const Candidate& one : all) {
        if (one.extents->x == 0 && one.extents->y == 0 &&
            (isSameSize(*one.extents, target.client) || isSameSize(*one.extents, target.bounds))) {
            alike.push_back(&one);
        }
    }
    if (alike.size() > 1) {
        std::erase_if(alike, [title = QString::fromStdString(target.title)](const Candidate* one) {
            return one->name != title;
        });
    }
    return alike.size() == 1 ? alike.front() : nullptr;
}

std::optional<Window> findWindow(AtspiBus& bus, const AtspiTarget& target) {
    const auto all = candidates(bus, target.pid);
    // Chromium takes its frame's corner for its own until it is moved.
    const Rect displaced{target.frame.x, target.frame.y, target.client.width, target.client.height};
    const auto inPlace = std::ranges::find_if(all, [&](const Candidate& one) {
        return isNear(*one.extents, target.client) || isNear(*one.extents, target.frame) ||
               isNear(*one.extents, target.bounds) || isNear(*one.extents, displaced);
    });
    const Candidate* found = inPlace != all.end() ? &*inPlace : matchBySize(all, target);
    if (found == nullptr) {
        return std::nullopt;
    }
    Window window;
    window.ref = found->ref;
    window.offset = inPlace != all.end() ? Point{} : target.bounds.origin();
    const auto toolkit =
        AtspiReply::text(bus.call(AtspiBus::property(found->application, "Application", "ToolkitName")));
    // GTK 4 says of windows only that they are showing.
    window.shownStates = toolkit == QStringLiteral("GTK") ? stateVisible : stateShowing;
    return window;
}

// Breadth first, asking a whole level at once: one by one takes four times as long.
std::vector<Node> walk(AtspiBus& bus, const AtspiRef& window) {
    std::vector<Node> nodes{{window, 0, 0}};
    std::size_t levelStart = 0;
    for (int depth = 0; depth <= maximumDepth && levelStart < nodes.size(); ++depth) {
        const std::size_t levelEnd = nodes.size();
        std::vector<QDBusMessage> questions;
        for (std::size_t i = levelStart; i < levelEnd; ++i) {
            questions.push_back(AtspiBus::method(nodes[i].ref, "Accessible", "GetRole"));
        }
        const auto roles = bus.callAll(questions);
        questions.clear();
        std::vector<std::size_t> parents;
        for (std::size_t i = levelStart; i < levelEnd; ++i) {
            const auto role = AtspiReply::number(roles[i - levelStart]);
            nodes[i].role = role.value_or(0);
            if (role && role != roleScrollBar && role != roleDocumentWeb &&
                std::ranges::find(contentRoles, *role) == contentRoles.end()) {
                questions.push_back(AtspiBus::method(nodes[i].ref, "Accessible", "GetChildren"));
                parents.push_back(i);
            }
        }
        const auto answers = bus.callAll(questions);
        for (std::size_t i = 0; i < answers.size(); ++i) {
            for (const AtspiRef& child : AtspiReply::children(answers[i]).value_or(std::vector<AtspiRef>())) {
                if (nodes.size() >= maximumNodes) {
                    break;
                }
                nodes.push_back({child, parents[i], 0});
            }
        }
        levelStart = levelEnd;
    }
    return nodes;
}

// What the bar scrolls: the pane that it is in, or, where there is none, the widget around the bar's helper.
AtspiRef areaOf(const std::vector<Node>& nodes, const Node& bar) {
    const Node& parent = nodes[bar.parent];
    return parent.role == roleFiller ? nodes[parent.parent].ref : parent.ref;
}

// The value of GTK 4's bars is their child's.
std::optional<std::pair<AtspiRef, bool>> valueHolder(AtspiBus& bus, const AtspiRef& bar) {
    const auto hasRange = [&](const AtspiRef& element) {
        const auto answers = bus.callAll({AtspiBus::property(element, "Value", "MinimumValue"),
                                          AtspiBus::property(element, "Value", "MaximumValue")});
        const auto minimum = AtspiReply::real(answers[0]);
        const auto maximum = AtspiReply::real(answers[1]);
        return minimum && maximum ? std::optional(*minimum < *maximum) : std::nullopt;
    };
    if (const auto has = hasRange(bar)) {
        return *has ? std::optional(std::pair(bar, false)) : std::nullopt;
    }
    const auto children = AtspiReply::children(bus.call(AtspiBus::method(bar, "Accessible", "GetChildren")));
    if (!children || children->empty() || hasRange(children->front()) != true) {
        return std::nullopt;
    }
    return std::pair(children->front(), true);
}

std::optional<AtspiScrollArea> describe(AtspiBus& bus, const Window& window, const std::vector<Node>& nodes,
                                        const Node& node) {
    const bool isDocument = node.role == roleDocumentWeb;
    AtspiScrollArea found;
    found.area = isDocument ? node.ref : areaOf(nodes, node);
    found.bar = node.ref;
    const auto answers = bus.callAll({AtspiBus::extents(found.area), AtspiBus::extents(node.ref),
                                      AtspiBus::method(found.area, "Accessible", "GetState"),
                                      AtspiBus::method(node.ref, "Accessible", "GetState"),
                                      AtspiBus::property(node.ref, "Action", "NActions")});
    const auto extents = AtspiReply::extents(answers[0]);
    const auto barExtents = AtspiReply::extents(answers[1]);
    const auto areaStates = AtspiReply::states(answers[2]);
    const auto barStates = AtspiReply::states(answers[3]);
    constexpr int nowhere = std::numeric_limits<int>::min();
    if (!extents || !areaStates || extents->width <= 0 || extents->height <= 0 || extents->x == nowhere ||
        extents->y == nowhere || (*areaStates & window.shownStates) == 0) {
        return std::nullopt;
    }
    found.frame = {extents->x + window.offset.x, extents->y + window.offset.y, double(extents->width),
                   double(extents->height)};
    if (isDocument) {
        found.drive = AtspiDrive::document;
        return found;
    }
    const std::uint64_t states = barStates.value_or(0);
    const bool isTall = barExtents && barExtents->height > barExtents->width;
    if ((states & stateVertical) == 0 && ((states & stateHorizontal) != 0 || !isTall)) {
        return std::nullopt;
    }
    const auto holder = valueHolder(bus, node.ref);
    if (!holder) {
        return std::nullopt;
    }
    if (AtspiReply::real(answers[4]) == stepActions) {
        found.drive = AtspiDrive::actions;
    }
    // Actions are the bar's own in any case.
    found.bar = found.drive == AtspiDrive::value ? holder->first : node.ref;
    found.includesPage = holder->second || found.drive == AtspiDrive::actions;
    return found;
}

} // namespace

std::vector<AtspiScrollArea> findScrollAreas(AtspiBus& bus, const AtspiTarget& target) {
    const auto window = findWindow(bus, target);
    if (!window) {
        return {};
    }
    const auto nodes = walk(bus, window->ref);
    std::vector<AtspiScrollArea> areas;
    for (const Node& node : nodes) {
        if (areas.size() >= maximumAreas) {
            break;
        }
        if (node.role == roleScrollBar || node.role == roleDocumentWeb) {
            if (auto found = describe(bus, *window, nodes, node)) {
                areas.push_back(std::move(*found));
            }
        }
    }
    return areas;
}

} // namespace skylet::platform::x11
