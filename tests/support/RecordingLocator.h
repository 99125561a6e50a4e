#pragma once

#include "Sound/SampleLocator.h"
#include "Sound/StoredSamplePath.h"

#include <string>
#include <utility>
#include <vector>

namespace pulsara::test {

// Loads nothing: remembers which stored names the reader asked for. Stores sample paths by the
// program's rule, relative to the song's folder or else to `samplesFolder`.
class RecordingLocator : public SampleLocator {
public:
    void locateSample(Song&, std::u16string_view storedName, uint32_t instrument) override
    {
        located.emplace_back(std::u16string(storedName), instrument);
    }
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) override
    {
        return makeStoredSamplePath(samplePath, songPath, samplesFolder);
    }

    std::u16string samplesFolder;
    std::vector<std::pair<std::u16string, uint32_t>> located;
};

} // namespace pulsara::test
