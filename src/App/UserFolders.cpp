#include "App/UserFolders.h"

#include "base/Path.h"

#include <filesystem>

namespace pulsara {

bool installUserFolders(const std::u16string& dataFolder, const std::u16string& songsFolder, const std::u16string& templatesFolder)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path songs(nativePath(songsFolder));
    if (fs::exists(songs, error) || error)
        return false;
    const fs::path templates(nativePath(templatesFolder));
    fs::create_directories(songs, error);
    fs::create_directories(templates, error);
    const fs::path demo = fs::path(nativePath(dataFolder)) / "Demo";
    for (const fs::directory_entry& entry : fs::directory_iterator(demo, error)) {
        const fs::path& file = entry.path();
        const fs::path target = (file.extension() == ".kqt" ? templates : songs) / file.filename();
        if (entry.is_regular_file(error) && (file.extension() == ".kqu" || file.extension() == ".kqt" || file.extension() == ".wav"))
            fs::copy_file(file, target, fs::copy_options::skip_existing, error);
    }
    return true;
}

} // namespace pulsara
