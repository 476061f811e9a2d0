// Reads and moves scroll bars over AT-SPI, as values from 0 (top) to 1 (end).
//
// Some toolkits report a maximum that cannot be reached, because the visible page counts with it, and none
// tells. Where the end really is shows when a bar is moved and read back; it is never tried on purpose.
//
// Threads: the bus's. Failure: error codes.
#pragma once

#include "platform/x11/AtspiBus.h"
#include "platform/x11/AtspiScrollAreas.h"

#include <chrono>
#include <optional>
#include <unordered_map>
#include <utility>

namespace skylet::platform::x11 {

class AtspiBars {
  public:
    explicit AtspiBars(AtspiBus& bus) : bus_(bus) {}

    // The error code, and the value, 0 on error.
    [[nodiscard]] std::pair<int, double> read(const AtspiScrollArea& area);
    // The error code.
    int write(const AtspiScrollArea& area, double value);
    // Starts anew with what the bars say.
    void forgetEnds() { ends_.clear(); }

  private:
    struct Range {
        int error = 0;
        double minimum = 0;
        double maximum = 0; // as the bar says
        double end = 0;     // as far as is known
        double current = 0;

        [[nodiscard]] double normalised() const;
    };
    // A page's headers may stay in place; what scrolls is its tallest part.
    struct Document {
        Range range;
        AtspiRef content;
        AtspiExtents extents; // of the content
    };
    using Time = std::chrono::steady_clock::time_point;
    struct End {
        double maximum = 0;             // what the bar said then
        std::optional<double> end;      // once known
        std::optional<Time> stuckSince; // the bar has not moved further
    };

    [[nodiscard]] Range readRange(const AtspiScrollArea& area);
    [[nodiscard]] Document readDocument(const AtspiScrollArea& area);
    int writeValue(const AtspiScrollArea& area, const Range& before, double value);
    int writeByActions(const AtspiScrollArea& area, Range range, double value);
    int writeDocument(const AtspiScrollArea& area, double value);
    void learnEnd(const AtspiScrollArea& area, const Range& before, double wanted);
    [[nodiscard]] End& endOf(const AtspiScrollArea& area, double maximum);
    static void noteStuck(End& end, double place);

    AtspiBus& bus_;
    std::unordered_map<QString, End> ends_; // by bus and path of the bar
};

} // namespace skylet::platform::x11
