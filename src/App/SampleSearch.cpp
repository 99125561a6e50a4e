#include "App/SampleSearch.h"

#include "base/Path.h"

#include <array>

namespace pulsara {

std::optional<PathString> findSample(std::u16string_view storedName, std::u16string_view songFolder,
    std::u16string_view samplesFolder, PathString* lastTried)
{
    std::array<PathString, 3> candidates;
    std::size_t count = 0;
    if (isAbsolutePath(storedName)) {
        candidates[count++].assign(storedName);
    } else {
        joinPath(candidates[count++], songFolder, storedName);
        joinPath(candidates[count++], samplesFolder, storedName);
    }
    joinPath(candidates[count++], samplesFolder, pathFileName(storedName));

    for (std::size_t i = 0; i < count; ++i) {
        if (fileExists(candidates[i].view()))
            return candidates[i];
    }
    if (lastTried)
        *lastTried = candidates[count - 1];
    return std::nullopt;
}

} // namespace pulsara
