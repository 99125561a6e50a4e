#include "App/DroppedFiles.h"

#include "base/Path.h"

#include <algorithm>
#include <filesystem>

namespace pulsara {

namespace {

bool hasExtension(std::u16string_view path, std::u16string_view extension)
{
    if (path.size() < extension.size())
        return false;
    std::u16string_view tail = path.substr(path.size() - extension.size());
    return std::equal(tail.begin(), tail.end(), extension.begin(), [](char16_t a, char16_t b) {
        return (a >= u'A' && a <= u'Z' ? char16_t(a - u'A' + u'a') : a) == b;
    });
}

} // namespace

DroppedFiles DroppedFiles::sort(const std::vector<std::u16string>& paths)
{
    DroppedFiles sorted;
    for (const std::u16string& path : paths) {
        std::error_code error;
        const bool file = std::filesystem::is_regular_file(nativePath(path), error);
        if (file && (hasExtension(path, u".kqu") || hasExtension(path, u".kqt")))
            sorted.songs.push_back(path);
        else if (file && hasExtension(path, u".wav"))
            sorted.samples.push_back(path);
        else
            sorted.refused.push_back(path);
    }
    return sorted;
}

std::u16string DroppedFiles::refusal() const
{
    std::u16string text = u"Pulsara opens songs (.kqu, .kqt) and WAV samples (.wav); ";
    text += refused.size() == 1 ? u"this is neither:" : u"these are neither:";
    for (const std::u16string& path : refused)
        text += u"\n" + std::u16string(pathFileName(path));
    return text;
}

} // namespace pulsara
