#include "platform/x11/AtspiAccessibility.h"

#include "platform/x11/AtspiScrollAreas.h"
#include "platform/x11/ClientGeometry.h"
#include "platform/x11/Property.h"

#include <cmath>
#include <optional>
#include <utility>

namespace skylet::platform::x11 {

namespace {

class AreaElement : public AXElement {
  public:
    explicit AreaElement(AtspiScrollArea scrollArea) : area(std::move(scrollArea)) {}
    const AtspiScrollArea area;
};

class BarElement : public AXElement {
  public:
    explicit BarElement(AtspiScrollArea scrollArea) : area(std::move(scrollArea)) {}
    const AtspiScrollArea area;
};

template <class T>
const T* as(const AXElementRef& element) {
    return dynamic_cast<const T*>(element.get());
}

AXResult failed(int error) {
    return {error, {}};
}

AXResult readArea(const AtspiScrollArea& area, std::string_view attribute) {
    if (attribute == "AXRole") {
        return {AXError::success, std::string("AXScrollArea")};
    }
    if (attribute == "AXPosition") {
        return {AXError::success, area.frame.origin()};
    }
    if (attribute == "AXSize") {
        return {AXError::success, area.frame.size()};
    }
    if (attribute == "AXVerticalScrollBar") {
        return {AXError::success, AXElementRef(std::make_shared<BarElement>(area))};
    }
    return failed(attribute == "AXChildren" ? AXError::noValue : AXError::attributeUnsupported);
}

AXResult readBar(AtspiBars& bars, const AtspiScrollArea& area, std::string_view attribute) {
    if (attribute == "AXRole") {
        return {AXError::success, std::string("AXScrollBar")};
    }
    if (attribute == "AXMinValue" || attribute == "AXMaxValue") {
        return {AXError::success, attribute == "AXMinValue" ? 0.0 : 1.0};
    }
    if (attribute == "AXValue") {
        const auto [error, value] = bars.read(area);
        return error == AXError::success ? AXResult{error, value} : failed(error);
    }
    return failed(AXError::attributeUnsupported);
}

// Nothing when the window is gone.
std::optional<AtspiTarget> describe(Connection& connection, const WindowElement& element) {
    PendingClientGeometry pending(connection, element.window);
    auto decoration =
        askProperty(connection, element.window, connection.atoms().NET_FRAME_EXTENTS, XCB_ATOM_CARDINAL, 4);
    const auto geometry = pending.read();
    if (!geometry) {
        return std::nullopt;
    }
    AtspiTarget target;
    target.pid = element.pid;
    target.client = geometry->client;
    target.bounds = geometry->bounds;
    target.frame = geometry->client;
    // left, right, top, bottom
    if (const auto sides = items(decoration, XCB_ATOM_CARDINAL); sides.size() == 4) {
        target.frame = {geometry->client.x - sides[0], geometry->client.y - sides[2],
                        geometry->client.width + sides[0] + sides[1],
                        geometry->client.height + sides[2] + sides[3]};
    }
    return target;
}

} // namespace

AtspiAccessibility::AtspiAccessibility(Connection& connection, MainQueue& mainQueue,
                                       qt::AccessibilityTrust& trust, RaisedWindows& raised,
                                       QDBusConnection sessionBus)
    : connection_(connection)
    , windows_(connection, mainQueue, trust, raised)
    , bus_(std::move(sessionBus)) {}

AXResult AtspiAccessibility::copyAttributeValue(const AXElementRef& element, std::string_view attribute) {
    if (const auto* area = as<AreaElement>(element)) {
        return readArea(area->area, attribute);
    }
    if (const auto* bar = as<BarElement>(element)) {
        return readBar(bars_, bar->area, attribute);
    }
    if (const auto* window = as<WindowElement>(element); window != nullptr && attribute == "AXChildren") {
        return readChildren(element, *window);
    }
    return windows_.copyAttributeValue(element, attribute);
}

AXResult AtspiAccessibility::readChildren(const AXElementRef& element, const WindowElement& window) {
    if (!windows_.isProcessTrusted()) {
        return failed(AXError::apiDisabled);
    }
    auto target = describe(connection_, window);
    if (!target) {
        return failed(AXError::invalidUIElement);
    }
    const auto title = windows_.copyAttributeValue(element, "AXTitle");
    if (const auto* text = title.get<std::string>()) {
        target->title = *text;
    }
    if (!bus_.isReachable()) {
        return failed(AXError::cannotComplete);
    }
    bars_.forgetEnds();
    std::vector<AXElementRef> areas;
    for (AtspiScrollArea& area : findScrollAreas(bus_, *target)) {
        areas.push_back(std::make_shared<AreaElement>(std::move(area)));
    }
    return {AXError::success, std::move(areas)};
}

int AtspiAccessibility::setAttributeValue(const AXElementRef& element, std::string_view attribute,
                                          double value) {
    const auto* bar = as<BarElement>(element);
    if (bar == nullptr || attribute != "AXValue" || !std::isfinite(value)) {
        return AXError::attributeUnsupported;
    }
    return bars_.write(bar->area, value);
}

std::pair<int, bool> AtspiAccessibility::isAttributeSettable(const AXElementRef& element,
                                                             std::string_view attribute) {
    if (as<BarElement>(element) == nullptr) {
        return {AXError::attributeUnsupported, false};
    }
    return {AXError::success, attribute == "AXValue"};
}

} // namespace skylet::platform::x11
