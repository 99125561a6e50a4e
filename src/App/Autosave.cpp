#include "App/Autosave.h"

#include "Sound/SongFile.h"
#include "base/Path.h"

#include <filesystem>

namespace pulsara {

std::u16string Autosave::pathFor(std::u16string_view songPath, std::u16string_view songsFolder)
{
    PathString path;
    if (songPath.empty()) {
        joinPath(path, songsFolder, u".Untitled.autosave");
    } else {
        PathString folder;
        parentFolder(folder, songPath);
        joinPath(path, folder.view(), u"." + std::u16string(pathFileName(songPath)) + u".autosave");
    }
    return std::u16string(path.view());
}

bool Autosave::write(Song& song, SampleLocator& locator, std::u16string_view autosavePath)
{
    return saveSong(song, autosavePath, locator, Backup::None) == 1;
}

bool Autosave::isNewer(std::u16string_view autosavePath, std::u16string_view songPath)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path autosave(nativePath(autosavePath));
    if (!fs::is_regular_file(autosave, error))
        return false;
    if (songPath.empty() || !fs::exists(nativePath(songPath), error))
        return true;
    return fs::last_write_time(autosave, error) > fs::last_write_time(nativePath(songPath), error);
}

void Autosave::remove(std::u16string_view autosavePath)
{
    std::error_code ignored;
    std::filesystem::remove(nativePath(autosavePath), ignored);
}

} // namespace pulsara
