// Loads arbitrary bytes as the settings file: whatever the file holds, every setting must come
// out within the program's limits, and reading it must neither crash nor hang nor ask for
// unbounded memory.
#include "App/AppSettings.h"
#include "App/PlainIniFormat.h"

#include <QSettings>

#include <cstdint>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

using namespace pulsara;

namespace {

const SettingsDefaults kDefaults { u"/data/", u"/songs/zzzDemo.kqu", u"/songs/Kick1.wav", u"/songs", {} };

// QSettings reads only files, so each input is written over one file, in memory where the system
// has a memory-backed folder. QSettings keeps what it read of a file and reads it again only when
// its size or modification time has changed, and two inputs of one size often come within one
// clock tick; so every input gets a modification time of its own, a second after the last one's.
// The file is named after the process, so that several runs can share the folder.
class SettingsFile {
public:
    SettingsFile()
        : name_(folder() + "/pulsara-fuzz-settings-" + std::to_string(::getpid()) + ".ini")
        , fd_(::open(name_.c_str(), O_RDWR | O_CREAT | O_TRUNC | O_CLOEXEC, 0600))
    {
        if (fd_ < 0)
            std::abort();
    }
    ~SettingsFile()
    {
        ::close(fd_);
        ::unlink(name_.c_str());
    }

    QString name() const { return QString::fromStdString(name_); }

    void store(const uint8_t* data, size_t size)
    {
        ++serial_;
        const struct timespec times[2] = { { serial_, 0 }, { serial_, 0 } };
        if (::ftruncate(fd_, 0) != 0 || ::pwrite(fd_, data, size, 0) != static_cast<ssize_t>(size) || ::futimens(fd_, times) != 0)
            std::abort();
    }

private:
    static std::string folder()
    {
        std::error_code error;
        if (std::filesystem::is_directory("/dev/shm", error))
            return "/dev/shm";
        return std::filesystem::temp_directory_path().string();
    }

    std::string name_;
    int fd_;
    time_t serial_ = 0;
};

bool fits(const std::u16string& text, size_t maxLength) { return text.size() <= maxLength; }

// The limits the rest of the program relies on.
bool withinLimits(const AppSettings& settings)
{
    bool paths = fits(settings.installDir, AppSettings::kMaxPathLength) && fits(settings.lastSong, AppSettings::kMaxPathLength)
        && fits(settings.lastSample, AppSettings::kMaxPathLength) && fits(settings.samplesDir, AppSettings::kMaxPathLength);
    bool skin = !settings.skinName.empty() && fits(settings.skinName, AppSettings::kMaxSkinNameLength);
    bool latency = settings.bufferLength >= AppSettings::kMinLatencyMs && settings.bufferLength <= AppSettings::kMaxLatencyMs;
    bool switches = (settings.channels == 1 || settings.channels == 2) && settings.interpolation <= 1 && settings.liveact <= 1;
    // Recent songs are whatever song paths the program opened, so only their number is bounded.
    bool recent = settings.recentSongs.size() <= AppSettings::kRecentSongs;
    for (const std::u16string& path : settings.recentSongs)
        recent = recent && !path.empty();
    return paths && skin && latency && switches && recent;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static SettingsFile file;
    file.store(data, size);
    QSettings settings(file.name(), plainIniFormat());
    if (!withinLimits(loadSettings(settings, kDefaults)))
        std::abort();
    return 0;
}
