#pragma once

#include "Sound/WaveOutStream.h"

#include <utility>
#include <vector>

namespace pulsara::testing {

// An output stream that keeps every meter notification, the way the application's meters
// would receive them.
class RecordingStream : public WaveOutStream {
public:
    using WaveOutStream::WaveOutStream;

    std::vector<std::pair<float, float>> peaks;
    std::vector<float> loads;

protected:
    void onPeaks(float left, float right) override { peaks.emplace_back(left, right); }
    void onCpuLoad(float load) override { loads.push_back(load); }
};

} // namespace pulsara::testing
