#include "base/Path.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pulsara {

std::string nativePath(std::u16string_view path)
{
    return toUtf8(path);
}

bool fileExists(std::u16string_view path)
{
    // A named pipe would block the open until someone writes to it.
    int fd = ::open(nativePath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    if (fd < 0)
        return false;
    struct stat info {};
    bool isFile = ::fstat(fd, &info) == 0 && !S_ISDIR(info.st_mode);
    ::close(fd);
    return isFile;
}

std::optional<std::u16string_view> pathExtension(std::u16string_view path)
{
    for (std::size_t i = path.size(); i > 0; --i) {
        char16_t unit = path[i - 1];
        if (unit == u'.')
            return path.substr(i);
        if (unit == kPathSeparator)
            return std::nullopt;
    }
    return path;
}

std::u16string_view pathFileName(std::u16string_view path)
{
    std::size_t separator = path.rfind(kPathSeparator);
    return separator == std::u16string_view::npos ? path : path.substr(separator + 1);
}

bool isAbsolutePath(std::u16string_view path)
{
    return (!path.empty() && path[0] == kPathSeparator) || (path.size() > 1 && path[1] == u':');
}

void joinPath(PathString& out, std::u16string_view folder, std::u16string_view name)
{
    // The folder or the name may be a view of `out` itself, so build the result aside first.
    PathString joined;
    if (!folder.empty() && !isAbsolutePath(name)) {
        joined.assign(folder);
        if (folder.back() != kPathSeparator)
            joined.append(kPathSeparator);
        joined.append(name);
    } else {
        joined.assign(name);
    }
    out = joined;
}

void parentFolder(PathString& out, std::u16string_view path)
{
    out.assign(path);
    std::size_t separator = out.view().rfind(kPathSeparator);
    if (separator != std::u16string_view::npos)
        out.setLength(separator);
}

int relativePath(PathString& out, std::u16string_view base, std::u16string_view target)
{
    if (target.empty())
        return -2;
    if (base.empty() || base[0] != target[0]) {
        out.assign(target);
        return -1;
    }
    std::size_t common = 0;
    while (common < base.size() && common < target.size() && base[common] == target[common])
        ++common;
    std::size_t rest = common;
    if (rest < target.size() && target[rest] == kPathSeparator)
        ++rest;

    // Each separator left in the base after the divergence is one folder to climb, and so is
    // the base's end unless the base ended exactly there.
    int steps = 0;
    if (common < base.size()) {
        for (std::size_t i = common + 1; i < base.size(); ++i)
            steps += base[i] == kPathSeparator;
        ++steps;
    }
    PathString result;
    for (int i = 0; i < steps; ++i)
        result.append(u"../");
    result.append(target.substr(rest));
    out = result;
    return steps;
}

void firstComponent(PathString& out, std::u16string_view path)
{
    PathString result;
    if (!path.empty()) {
        std::size_t start = path.find(kPathSeparator, 1);
        if (start != std::u16string_view::npos) {
            std::u16string_view tail = path.substr(start + 1);
            result.assign(tail.substr(0, tail.find(kPathSeparator)));
        }
    }
    out = result;
}

} // namespace pulsara
