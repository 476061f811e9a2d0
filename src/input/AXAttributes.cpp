#include "input/AXAttributes.h"

#include <cstddef>

namespace skylet::AXAttributes {

namespace {

using platform::Accessibility;
using platform::AXElementRef;

constexpr int maximumDepth = 11; // the window itself is 0
constexpr std::size_t maximumAreas = 8;

template <class T>
std::optional<T> copy(Accessibility& accessibility, const AXElementRef& element, std::string_view attribute) {
    const auto result = accessibility.copyAttributeValue(element, attribute);
    const T* value = result.get<T>();
    return value == nullptr ? std::nullopt : std::optional(*value);
}

void collect(Accessibility& accessibility, const AXElementRef& element, int depth,
             std::vector<AXElementRef>& areas) {
    if (depth > maximumDepth || areas.size() >= maximumAreas) {
        return;
    }
    if (copyString(accessibility, element, "AXRole") == "AXScrollArea") {
        areas.push_back(element);
    }
    const auto children = copy<std::vector<AXElementRef>>(accessibility, element, "AXChildren");
    if (!children) {
        return;
    }
    for (const AXElementRef& child : *children) {
        collect(accessibility, child, depth + 1, areas);
    }
}

} // namespace

std::optional<std::string> copyString(Accessibility& accessibility, const AXElementRef& element,
                                      std::string_view attribute) {
    return copy<std::string>(accessibility, element, attribute);
}

std::optional<double> copyNumber(Accessibility& accessibility, const AXElementRef& element,
                                 std::string_view attribute) {
    return copy<double>(accessibility, element, attribute);
}

AXElementRef copyElement(Accessibility& accessibility, const AXElementRef& element,
                         std::string_view attribute) {
    return copy<AXElementRef>(accessibility, element, attribute).value_or(nullptr);
}

std::optional<platform::Rect> frameOf(Accessibility& accessibility, const AXElementRef& element) {
    const auto position = copy<platform::Point>(accessibility, element, "AXPosition");
    const auto size = copy<platform::Size>(accessibility, element, "AXSize");
    if (!position || !size) {
        return std::nullopt;
    }
    return platform::Rect{position->x, position->y, size->width, size->height};
}

std::vector<AXElementRef> collectScrollAreas(Accessibility& accessibility, const AXElementRef& window) {
    std::vector<AXElementRef> areas;
    collect(accessibility, window, 0, areas);
    return areas;
}

} // namespace skylet::AXAttributes
