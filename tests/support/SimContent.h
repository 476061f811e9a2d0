// What accessibility tells about the contents of a simulated window.
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
    std::optional<platform::Rect> frame; // window-server coordinates
    std::vector<SimNodeRef> children;
    SimNodeRef verticalBar;
    // Of bars.
    std::optional<double> value;
    std::optional<double> minimum;
    std::optional<double> maximum;
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
    SimNodeRef addScrollArea(platform::Rect areaFrame, double barValue) {
        SimNode bar;
        bar.role = "AXScrollBar";
        bar.value = barValue;
        SimNode area;
        area.role = "AXScrollArea";
        area.frame = areaFrame;
        area.verticalBar = std::make_shared<SimNode>(bar);
        return add(std::move(area));
    }
};

} // namespace skylet::sim
