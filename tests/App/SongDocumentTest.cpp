// The song's file when things go wrong: a save that runs out of room, and the changes a crash
// left in the automatic copy.
#include "App/Application.h"
#include "GUI/ScriptedPrompts.h"
#include "GUI/WindowDriver.h"
#include "Sound/SongFile.h"
#include "base/Path.h"
#include "support/FullSong.h"
#include "support/PulledWaveDevice.h"
#include "support/RecordingLocator.h"
#include "support/ReportRecorder.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <chrono>
#include <csignal>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

using namespace pulsara;
using namespace pulsara::test;

namespace {

struct Screen : WindowDriver {
    pulsara::testing::PulledWaveDevice device;
    Application app { loadedSkin(), device };

    explicit Screen(std::u16string_view song) : WindowDriver(app)
    {
        app.initialise(30);
        app.loadSongFile(song);
        open(1200, 780);
    }
};

// A folder with room for 64 KiB: a tmpfs of that size over it where this process may mount one
// (in a mount namespace of its own), else a limit on the size of the files it writes, which
// stops a write as a full disk does.
class SmallDisk {
public:
    static constexpr rlim_t kBytes = 64 * 1024;

    explicit SmallDisk(const std::filesystem::path& folder) : folder_(folder)
    {
        mounted_ = ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
            && ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
        if (mounted_)
            return;
        ::getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit small { kBytes, limit_.rlim_max };
        ::signal(SIGXFSZ, SIG_IGN);
        ::setrlimit(RLIMIT_FSIZE, &small);
    }
    ~SmallDisk()
    {
        if (mounted_)
            ::umount2(folder_.c_str(), MNT_DETACH);
        else
            ::setrlimit(RLIMIT_FSIZE, &limit_);
    }

private:
    std::filesystem::path folder_;
    bool mounted_ = false;
    rlimit limit_ {};
};

// A song of its own, without samples, so that loading it asks nothing.
std::u16string writeSong(const ScratchFolder& folder)
{
    const std::u16string path = folder.file("beat.kqu");
    Song song;
    RecordingLocator locator;
    EXPECT_EQ(saveSong(song, path, locator, Backup::None), 1);
    return path;
}

} // namespace

TEST(SongDocument, ASaveThatRunsOutOfRoomKeepsTheOldFileAndTheSongModified)
{
    ScratchFolder folder;
    SmallDisk disk(folder.path());
    const std::u16string path = writeSong(folder);
    const std::vector<uint8_t> old = folder.read("beat.kqu");
    Screen screen(path);
    fillSong(screen.app.song(), 1.0f);
    screen.key(kKeyReturn);
    ASSERT_EQ(screen.window.title, u"Pulsara - beat*");

    ReportRecorder reports;
    screen.command(Application::kSaveCommand);
    ASSERT_EQ(reports.reports().size(), 1u);
    EXPECT_EQ(reports.last().message.rfind(u"cant open kvSong file to save \"" + path + u"\": ", 0), 0u) << "says why";
    EXPECT_EQ(screen.window.title, u"Pulsara - beat*");
    EXPECT_TRUE(screen.app.documentFlags() & Application::kDirtyFlag) << "the next exit still asks";
    EXPECT_EQ(folder.read("beat.kqu"), old);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(folder.path()), std::filesystem::directory_iterator()), 1) << "no partial file is left";
}

TEST(SongDocument, ChangesACrashLeftAreOfferedOnTheNextOpenAndGoneWhenRefused)
{
    ScratchFolder folder;
    const std::u16string path = writeSong(folder);
    std::filesystem::last_write_time(folder.path() / "beat.kqu", std::filesystem::file_time_type::clock::now() - std::chrono::hours(1));
    const std::u16string autosave = folder.file(".beat.kqu.autosave");
    {
        Screen crashed(path);
        crashed.key(kKeyReturn);
        ASSERT_TRUE(crashed.app.document().autosave());
        // Destroyed without exitApp(), as a crash leaves it.
    }
    for (PromptAnswer answer : { PromptAnswer::Yes, PromptAnswer::No }) {
        const bool recovered = answer == PromptAnswer::Yes;
        SCOPED_TRACE(recovered);
        ScriptedPrompts prompts({ answer });
        Screen reopened(path);
        ASSERT_EQ(prompts.asked.size(), 1u);
        EXPECT_EQ(prompts.asked[0].caption, u"Recover");
        EXPECT_EQ(reopened.app.song().player().pattern(0).isNote(0, 0), recovered);
        EXPECT_EQ(reopened.window.title, recovered ? u"Pulsara - beat*" : u"Pulsara - beat");
        EXPECT_EQ(fileExists(autosave), recovered) << "a refused copy is removed";
    }
}
