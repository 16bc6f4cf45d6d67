// The 256-entry table of a gradient map.
#pragma once

#include <vector>

#include "oracle/Pixels.h"

namespace oracle {

inline Values blend(const Values& from, const Values& to, float t) {
    return {from.r * (1.0F - t) + to.r * t, from.g * (1.0F - t) + to.g * t, from.b * (1.0F - t) + to.b * t,
            from.a * (1.0F - t) + to.a * t};
}

/// Fills up to two stops: black in front of nothing, white behind one.
inline std::vector<Values> completedStops(std::vector<Values> stops) {
    if (stops.empty()) {
        stops.push_back({0.0F, 0.0F, 0.0F, 1.0F});
    }
    if (stops.size() == 1) {
        stops.push_back({1.0F, 1.0F, 1.0F, 1.0F});
    }
    return stops;
}

inline std::vector<Values> gradientTable(const std::vector<Values>& givenStops) {
    const std::vector<Values> stops = completedStops(givenStops);
    const float inverse = 1.0F / static_cast<float>(stops.size() - 1);
    std::size_t next = 1;
    int start = 0;
    int end = static_cast<int>(inverse * 255.0F);
    std::vector<Values> table;
    for (int i = 0; i < 256; ++i) {
        // Rounding may end the last segment at 254; what follows is the last stop itself.
        if (next == stops.size()) {
            table.push_back(stops.back());
            continue;
        }
        const float t = static_cast<float>(i - start) / static_cast<float>(end - start);
        table.push_back(blend(stops[next - 1], stops[next], t));
        if (i == end && i != 255) {
            ++next;
            start = end;
            end = static_cast<int>(inverse * static_cast<float>(next) * 255.0F);
        }
    }
    return table;
}

} // namespace oracle
