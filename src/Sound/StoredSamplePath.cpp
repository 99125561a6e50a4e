#include "Sound/StoredSamplePath.h"

#include "base/Path.h"

namespace pulsara {

namespace {

// relativePath needs no "../" exactly when the target begins with the whole base; asking it only
// then also keeps a deep base from overflowing the result with steps that would be thrown away.
bool storeRelativeTo(PathString& out, std::u16string_view folder, std::u16string_view samplePath)
{
    if (folder.empty() || !samplePath.starts_with(folder))
        return false;
    return relativePath(out, folder, samplePath) == 0;
}

} // namespace

PathString makeStoredSamplePath(std::u16string_view samplePath, std::u16string_view songPath,
    std::u16string_view samplesFolder)
{
    PathString stored;
    PathString songFolder;
    parentFolder(songFolder, songPath);
    if (storeRelativeTo(stored, songFolder.view(), samplePath) || storeRelativeTo(stored, samplesFolder, samplePath))
        return stored;
    stored.assign(samplePath);
    return stored;
}

} // namespace pulsara
