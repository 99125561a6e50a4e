#include "cli/PlayStatusLine.h"

#include <algorithm>
#include <cmath>
#include <cstdio>

namespace pulsara {

int PlayStatusLine::litSegments(float peak)
{
    if (!(peak > 0.0f))
        return 0;
    return std::min(kMeterSegments, static_cast<int>(peak * kMeterSegments));
}

std::string PlayStatusLine::format(const PlayStatus& status)
{
    auto meter = [](float peak) {
        int lit = litSegments(peak);
        return std::string(static_cast<size_t>(lit), '#') + std::string(static_cast<size_t>(kMeterSegments - lit), '-');
    };
    int percent = std::isfinite(status.load) ? static_cast<int>(std::clamp(status.load, 0.0f, 9.99f) * 100.0f) : 999;
    char line[160];
    std::snprintf(line, sizeof line, "pos %03d  step %02u  L [%s] R [%s] %s  load %3d%%%s",
        std::max(status.songPosition, 0), status.step, meter(status.peakLeft).c_str(), meter(status.peakRight).c_str(),
        status.clipped ? "CLIP" : "    ", percent, status.live ? "  live" : "");
    return line;
}

} // namespace pulsara
