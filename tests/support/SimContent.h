// What accessibility tells about a simulated window and its contents.
#pragma once

#include "platform/Accessibility.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace skylet::sim {

struct SimNode;
using SimNodeRef = std::shared_ptr<SimNode>;

struct SimNode {
    std::string role = "AXGroup";
    // What is absent cannot be read. Positions are window-server coordinates.
    std::optional<std::string> title{};
    std::optional<platform::Point> position{};
    std::optional<platform::Size> size{};
    std::vector<SimNodeRef> children{};
    SimNodeRef verticalBar{};
    // Of bars.
    std::optional<double> value{}, minimum{}, maximum{};
    bool isSettable = true;
    bool ignoresWrites = false; // and says that it obeys them
    int settableError = platform::AXError::success;
    int setError = platform::AXError::success;

    double answerSeconds = 0; // longer than the messaging timeout: no answer
    int reads = 0;
    int writes = 0;

    // A child of its own, last among its siblings.
    SimNodeRef add(SimNode child) {
        return children.emplace_back(std::make_shared<SimNode>(std::move(child)));
    }
    // A scroll area with a bar that can be set.
    SimNodeRef addScrollArea(platform::Rect frame, double barValue) {
        SimNode area{.role = "AXScrollArea", .position = frame.origin(), .size = frame.size()};
        area.verticalBar = std::make_shared<SimNode>(SimNode{.role = "AXScrollBar", .value = barValue});
        return add(std::move(area));
    }
};

} // namespace skylet::sim
