// What the product is called, to people and to programs.
#pragma once

namespace skylet {

constexpr const char* productName = "Skylet";
constexpr const char* bundleIdentifier = "com.corvane.skylet";

} // namespace skylet
