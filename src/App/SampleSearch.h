#pragma once

#include "base/text.h"

#include <optional>
#include <string_view>

namespace pulsara {

// Where a sample that a song file names may be, in the order to try: a relative name in the
// song's folder, then in the samples folder, then its bare file name in the samples folder; an
// absolute name as it is, then its bare file name in the samples folder. Returns the first that
// can be opened, or nullopt with `lastTried` set to the last candidate.
std::optional<PathString> findSample(std::u16string_view storedName, std::u16string_view songFolder,
    std::u16string_view samplesFolder, PathString* lastTried = nullptr);

} // namespace pulsara
