#include "Sound/SongFile.h"

#include "Sound/SongReader.h"
#include "Sound/SongWriter.h"
#include "base/ErrorReporter.h"
#include "base/Path.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>
#include <vector>

namespace pulsara {

using namespace songfile;

namespace {

constexpr int kCantOpenLine = 112;
constexpr int kCantSaveLine = 342;

// A full song (40 patterns of 40 rows of 64 notes) takes about 4 MB; what lies past this much
// is not read, as if the file ended there.
constexpr std::size_t kMaxSongFileBytes = 64 * 1024 * 1024;
constexpr std::size_t kReadChunkBytes = 64 * 1024;

class FileDescriptor {
public:
    explicit FileDescriptor(int fd)
        : fd_(fd)
    {
    }
    ~FileDescriptor()
    {
        if (fd_ >= 0)
            ::close(fd_);
    }
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;

    int get() const { return fd_; }
    // Closes now, so that the caller learns of a failure to write the last data.
    bool close()
    {
        int fd = fd_;
        fd_ = -1;
        return ::close(fd) == 0;
    }

private:
    int fd_;
};

struct FileContents {
    std::vector<uint8_t> bytes;
    SongReader::DataEnd end = SongReader::DataEnd::EndOfFile;
};

FileContents readWholeFile(int fd, std::size_t sizeHint)
{
    FileContents contents;
    contents.bytes.reserve(std::min(sizeHint, kMaxSongFileBytes));
    while (contents.bytes.size() < kMaxSongFileBytes) {
        std::size_t had = contents.bytes.size();
        std::size_t chunk = std::min(kReadChunkBytes, kMaxSongFileBytes - had);
        contents.bytes.resize(had + chunk);
        ssize_t got = ::read(fd, contents.bytes.data() + had, chunk);
        if (got < 0 && errno == EINTR) {
            contents.bytes.resize(had);
            continue;
        }
        contents.bytes.resize(had + static_cast<std::size_t>(std::max<ssize_t>(got, 0)));
        if (got < 0)
            contents.end = SongReader::DataEnd::ReadError;
        if (got <= 0)
            break;
    }
    return contents;
}

bool writeAll(int fd, const std::vector<uint8_t>& bytes)
{
    std::size_t written = 0;
    while (written < bytes.size()) {
        ssize_t count = ::write(fd, bytes.data() + written, bytes.size() - written);
        if (count < 0 && errno == EINTR)
            continue;
        if (count <= 0)
            return false;
        written += static_cast<std::size_t>(count);
    }
    return true;
}

// Creates a file beside `target` that no one else uses; its name is returned through `name`.
int createTemporaryBeside(const std::string& target, std::string& name)
{
    constexpr int kAttempts = 100;
    for (int attempt = 0; attempt < kAttempts; ++attempt) {
        name = target + ".saving-" + std::to_string(::getpid()) + "-" + std::to_string(attempt);
        int fd = ::open(name.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
        if (fd >= 0 || errno != EEXIST)
            return fd;
    }
    return -1;
}

// A save killed half way (a crash, a power cut) leaves its temporary file of up to a few
// megabytes; the next save of the same song removes those whose program is gone.
void removeAbandonedTemporaries(const std::string& target)
{
    const size_t slash = target.rfind('/');
    const std::string folder = slash == std::string::npos ? "./" : target.substr(0, slash + 1);
    const std::string prefix = target.substr(slash == std::string::npos ? 0 : slash + 1) + ".saving-";
    DIR* entries = ::opendir(folder.c_str());
    if (!entries)
        return;
    while (const dirent* entry = ::readdir(entries)) {
        const std::string name = entry->d_name;
        if (name.compare(0, prefix.size(), prefix) != 0)
            continue;
        const long pid = std::strtol(name.c_str() + prefix.size(), nullptr, 10);
        if (pid > 0 && ::kill(pid_t(pid), 0) != 0 && errno == ESRCH)
            ::unlink((folder + name).c_str());
    }
    ::closedir(entries);
}

// Writes the bytes to a temporary file in the target's folder and renames it over the target,
// so that the target holds either the old song or the whole new one. The old song stays as
// <target>.bak: a second name for its file, made before the new one takes the target's name.
bool replaceFile(const std::string& target, const std::vector<uint8_t>& bytes, Backup backup)
{
    std::string temporaryName;
    FileDescriptor file(createTemporaryBeside(target, temporaryName));
    if (file.get() < 0)
        return false;
    bool written = writeAll(file.get(), bytes) && ::fsync(file.get()) == 0;
    if (file.close() && written) {
        if (backup == Backup::Keep) {
            std::string backupName = target + ".bak";
            ::unlink(backupName.c_str());
            if (::link(target.c_str(), backupName.c_str()) != 0 && errno != ENOENT)
                ::unlink(backupName.c_str());
        }
        if (::rename(temporaryName.c_str(), target.c_str()) == 0) {
            removeAbandonedTemporaries(target);
            return true;
        }
    }
    ::unlink(temporaryName.c_str());
    return false;
}

} // namespace

int loadSong(Song& song, std::u16string_view path, SampleLocator& locator)
{
    // Not blocking on the open keeps a named pipe from hanging the load; it is refused below.
    FileDescriptor file(::open(nativePath(path).c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat info {};
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0 || !S_ISREG(info.st_mode)) {
        std::u16string message = u"Can't open kvSong file \"";
        message += path;
        message += u'"';
        reportError(&errorContext(), kRecoverable, kSource, kCantOpenLine, message);
        return 0;
    }
    FileContents contents = readWholeFile(file.get(), static_cast<std::size_t>(std::max<off_t>(info.st_size, 0)));
    file.close();
    return SongReader(song, locator, contents.bytes, contents.end).read();
}

int saveSong(Song& song, std::u16string_view path, SampleLocator& locator, Backup backup)
{
    std::vector<uint8_t> bytes = SongWriter(song, locator, path).write();
    // A save that fails leaves the old file as it was and the song in the program unsaved, so
    // that nothing is lost; the user hears why and can save elsewhere.
    if (replaceFile(nativePath(path), bytes, backup))
        return 1;
    std::u16string message = u"cant open kvSong file to save \"";
    message += path;
    message += u"\": ";
    message += fromUtf8(std::strerror(errno));
    reportError(&errorContext(), kRecoverable, kSource, kCantSaveLine, message);
    return 0;
}

} // namespace pulsara
