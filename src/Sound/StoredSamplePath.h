#pragma once

#include "base/text.h"

#include <string_view>

namespace pulsara {

// How a song saved at `songPath` names the sample at `samplePath` (both absolute, native
// separators): relative to the song's folder when the sample lies in that folder or below it,
// else relative to `samplesFolder` in the same sense, else the full path. "Below" is the
// unit-by-unit rule of relativePath: a relative form that would need "../" does not count.
PathString makeStoredSamplePath(std::u16string_view samplePath, std::u16string_view songPath,
    std::u16string_view samplesFolder);

} // namespace pulsara
