#pragma once

#include "base/text.h"

#include <cstdint>
#include <string_view>

namespace pulsara {

class Song;

// How song files find and name their samples. The window asks the user about a sample it
// cannot find; the command line searches quietly and warns.
class SampleLocator {
public:
    virtual ~SampleLocator() = default;

    // Finds the sample a song file names (as stored: relative or absolute, native separators)
    // and loads it into the song's instrument slot, or leaves the slot empty.
    virtual void locateSample(Song&, std::u16string_view storedName, uint32_t instrument) = 0;
    // The form of an absolute sample path to store in a song file saved at `songPath`.
    virtual PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) = 0;
};

} // namespace pulsara
