// The song as a file: titles, the save-changes question and its answers, the version naming
// rule, the templates menu, the missing-sample search, saves that fail (a missing folder, a
// full disk), and the automatic copy a crash leaves behind.
#include "App/SongDocument.h"

#include "GUI/ScriptedPrompts.h"
#include "GUI/editors/SongEdits.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "support/FullSong.h"
#include "support/RecordingLocator.h"
#include "support/ReportRecorder.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <QUndoStack>
#include <gtest/gtest.h>

#include <csignal>
#include <filesystem>
#include <sched.h>
#include <sys/mount.h>
#include <sys/resource.h>

using namespace pulsara;
using namespace pulsara::test;

namespace {

void write(Song& song, std::u16string_view path) { RecordingLocator locator; saveSong(song, path, locator); }

struct RecordingHost final : DocumentHost {
    std::u16string title;
    bool closed = false;
    std::vector<std::u16string> templates, remembered;
    void showNewSong() override { }
    void setTitle(std::u16string_view text) override { title = text; }
    void storeViewState() override { }
    bool stopForExport() override { return false; }
    void resumeAfterExport(bool) override { }
    bool exportSong(std::u16string_view) override { return true; }
    void closeWindow() override { closed = true; }
    void setTemplatesMenu(const std::vector<std::u16string>& names) override { templates = names; }
    void rememberSong(std::u16string_view path) override { remembered.emplace_back(path); }
};

struct Document {
    ScratchFolder folder;
    Song song;
    SongEdits edits { song };
    RecordingHost host;
    SongDocument document { song, edits, host };

    Document()
    {
        edits.onCleanChanged = [this](bool clean) { document.setDirty(!clean); };
        document.setFolders(folder.file("songs"), folder.file("templates"), folder.file("samples"));
        document.makeUntitled();
    }
    // A song file in the folder, loaded as Open would.
    std::u16string open(const std::string& name)
    {
        std::filesystem::create_directories(folder.path() / "songs");
        std::u16string path = folder.file("songs/" + name);
        Song file;
        file.player().setPatternName(0, u"from file");
        write(file, path);
        document.setSongPath(path);
        document.loadSongFile();
        return path;
    }
    // Each edit puts a note where there was none.
    void edit() { edits.setPatternCell(0, 0, edited++, kDefaultNote); }
    uint32_t edited = 0;
};

// A folder with room for 64 KiB: a tmpfs of that size over it where this process may mount one
// (in a mount namespace of its own), else a limit on the size of the files it writes, which
// stops a write as a full disk does.
struct SmallDisk {
    explicit SmallDisk(const std::filesystem::path& folder) : folder_(folder)
    {
        mounted_ = ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0
            && ::mount("tmpfs", folder.c_str(), "tmpfs", 0, "size=64k") == 0;
        if (mounted_)
            return;
        ::getrlimit(RLIMIT_FSIZE, &limit_);
        const rlimit small { 64 * 1024, limit_.rlim_max };
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
    std::filesystem::path folder_;
    bool mounted_ = false;
    rlimit limit_ {};
};

} // namespace

TEST(SongDocument, TitlesNameTheSongAndMarkItsChanges)
{
    Document doc;
    EXPECT_EQ(doc.host.title, u"Pulsara - Untitled");
    doc.edit();
    EXPECT_EQ(doc.host.title, u"Pulsara - Untitled*");
    doc.open("a.b.kqu");
    EXPECT_EQ(doc.host.title, u"Pulsara - a") << "the name stops at the first dot";
}

TEST(SongDocument, AsksToSaveChangesOnlyWhenThereAreAny)
{
    struct Case {
        bool titled, dirty;
        PromptAnswer answer;
        const char16_t* question; // null: nothing asked
        int aborted;
    };
    const Case cases[] = {
        { true, false, PromptAnswer::Cancel, nullptr, 0 },
        { false, true, PromptAnswer::No, u"Save changes?", 0 },
        { true, true, PromptAnswer::Cancel, u"Save changes to \"beat\"?", 1 },
        { true, true, PromptAnswer::Yes, u"Save changes to \"beat\"?", 0 }, // saved in place
        { false, true, PromptAnswer::Yes, u"Save changes?", 1 }, // the Save As dialog was cancelled
    };
    for (const Case& c : cases) {
        Document doc;
        ScriptedFileDialogs cancelled;
        ScriptedPrompts answers({ c.answer });
        if (c.titled)
            doc.open("beat.kqu");
        if (c.dirty)
            doc.edit();
        EXPECT_EQ(doc.document.askSaveChanges(u"Exit"), c.aborted);
        using Questions = ScriptedPrompts::Questions;
        EXPECT_EQ(answers.asked, (c.question ? Questions { { c.question, u"Exit", PromptButtons::YesNoCancel } } : Questions {}));
    }

    // The other callers' captions.
    Document doc;
    doc.edit();
    ScriptedPrompts answers;
    doc.document.newEmptySong();
    doc.document.openSong();
    doc.document.exitApp();
    EXPECT_EQ(answers.captions(), (std::vector<std::u16string> { u"New Song", u"Open Song", u"Exit" }));
    EXPECT_FALSE(doc.host.closed) << "Cancel keeps the program";
}

TEST(SongDocument, SaveNewVersionTakesTheNextFreeName)
{
    ScratchFolder folder;
    const std::string base = folder.path().string() + "/";
    folder.write("beat_1.kqu", { 1 });
    folder.write("beat_7.kqu", { 1 });
    struct Case {
        const char* path;
        const char* next;
    };
    const Case cases[] = {
        { "beat.kqu", "beat_2.kqu" }, // beat_1 exists
        { "beat_7.kqu", "beat_8.kqu" },
        { "take2.kqu", "take2_1.kqu" }, // digits without "_" are part of the name
        { "song_.kqu", "song_1.kqu" },
        { "plain", "plain_1" },
        { "dir.v2/tune", "dir.v2/tune_1" }, // a dot in a folder's name is no extension
    };
    for (const Case& c : cases) {
        std::u16string path = fromUtf8(base + c.path);
        EXPECT_EQ(SongDocument::nextVersionPath(path), fromUtf8(base + c.next)) << c.path;
    }
}

// A failed save keeps the song modified: the full-disk test below.
TEST(SongDocument, SavesMarkTheSongSavedAndSaveAsAndNewVersionRetitleIt)
{
    Document doc;
    const std::u16string path = doc.open("beat.kqu");
    doc.edit();
    ASSERT_EQ(doc.document.save(), 1);
    EXPECT_FALSE(doc.document.isDirty());
    EXPECT_EQ(doc.host.remembered.back(), path);

    doc.edit();
    ScriptedFileDialogs chosen(doc.folder.file("kept.kqu"));
    EXPECT_EQ(doc.document.saveAs(), 1);
    EXPECT_EQ(doc.host.title, u"Pulsara - kept");
    EXPECT_EQ(doc.document.saveNewVersion(), 1);
    EXPECT_EQ(doc.host.title, u"Pulsara - kept_1");
}

TEST(SongDocument, ASaveThatRunsOutOfRoomKeepsTheOldFileAndTheSongModified)
{
    Document doc;
    std::filesystem::create_directories(doc.folder.path() / "songs");
    SmallDisk disk(doc.folder.path() / "songs");
    const std::u16string path = doc.open("beat.kqu");
    const std::vector<uint8_t> old = doc.folder.read("songs/beat.kqu");
    fillSong(doc.song, 1.0f);
    doc.edit();

    ReportRecorder reports;
    EXPECT_EQ(doc.document.save(), 0);
    ASSERT_EQ(reports.reports().size(), 1u);
    EXPECT_EQ(reports.last().message.rfind(u"cant open kvSong file to save \"" + path + u"\": ", 0), 0u) << "says why";
    EXPECT_TRUE(doc.document.isDirty()) << "the next exit still asks";
    EXPECT_EQ(doc.host.title, u"Pulsara - beat*");
    EXPECT_EQ(doc.folder.read("songs/beat.kqu"), old);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(doc.folder.path() / "songs"), std::filesystem::directory_iterator()), 1)
        << "no partial file is left";
}

TEST(SongDocument, TheTemplatesMenuListsTheTemplatesFolder)
{
    Document doc;
    doc.document.buildTemplatesMenu();
    EXPECT_TRUE(doc.host.templates.empty()) << "no folder leaves the menu as it is";
    doc.folder.write("templates/Drums.kqt", { 1 });
    doc.folder.write("templates/notes.txt", { 1 });
    doc.document.buildTemplatesMenu();
    EXPECT_EQ(doc.host.templates, (std::vector<std::u16string> { u"Drums" }));

    // A template opens untitled and clean, and is no recent song.
    Song file;
    file.player().setPatternName(3, u"template");
    write(file, doc.folder.file("templates/Drums.kqt"));
    EXPECT_EQ(doc.document.newFromTemplate(0), 1);
    EXPECT_EQ(doc.song.player().patternName(3), u"template");
    EXPECT_EQ(doc.host.title, u"Pulsara - Untitled");
    EXPECT_TRUE(doc.host.remembered.empty());
}

TEST(SongDocument, AsksForSamplesThatAreNotWhereTheSongSays)
{
    struct Case {
        std::vector<PromptAnswer> answers;
        size_t questions;
        bool found;
    };
    // The song names two samples that are nowhere; a chosen file is loaded in their place.
    const Case cases[] = {
        { { PromptAnswer::Cancel }, 1, false }, // Cancel: no more questions for this song
        { { PromptAnswer::No, PromptAnswer::No }, 2, false },
        // The folder of a file chosen by hand is searched for the next sample: no second question.
        { { PromptAnswer::Yes }, 1, true },
    };
    for (const Case& c : cases) {
        Document doc;
        const std::u16string kick = doc.folder.write("elsewhere/kick.wav", makeWav(1, 44100, 16, pcm16({ 5, 6 })));
        Song withSamples;
        withSamples.instrument(0).sample().load(kick);
        withSamples.instrument(1).sample().load(kick);
        const std::u16string path = doc.folder.write("songs/beat.kqu", {});
        write(withSamples, path);
        std::filesystem::remove(doc.folder.path() / "elsewhere/kick.wav");
        const std::u16string moved = doc.folder.write("moved/kick.wav", makeWav(1, 44100, 16, pcm16({ 5, 6 })));

        ScriptedPrompts answers({ c.answers.begin(), c.answers.end() });
        ScriptedFileDialogs chosen(moved);
        doc.document.setSongPath(path);
        ASSERT_EQ(doc.document.loadSongFile(), 1);
        ASSERT_EQ(answers.captions(), std::vector<std::u16string>(c.questions, u"Sampler"));
        EXPECT_EQ(answers.asked[0].text.rfind(u"Can't find file\"", 0), 0u);
        EXPECT_EQ(doc.song.instrument(0).sample().isLoaded(), c.found);
        EXPECT_EQ(doc.song.instrument(1).sample().isLoaded(), c.found);
        // A sample found in another place makes the song differ from its file.
        EXPECT_EQ(doc.document.isDirty(), c.found);
        if (c.found) {
            EXPECT_EQ(doc.document.samplesFolder(), doc.folder.file("moved"));
        }
    }
}

TEST(SongDocument, OffersTheCopyACrashLeftBehind)
{
    Document doc;
    const std::u16string path = doc.open("beat.kqu");
    doc.edit();
    ASSERT_TRUE(doc.document.autosave());
    const std::u16string copy = doc.document.autosavePath();
    EXPECT_EQ(copy, doc.folder.file("songs/.beat.kqu.autosave"));
    EXPECT_TRUE(doc.document.isDirty()) << "the copy is no save";

    for (PromptAnswer answer : { PromptAnswer::No, PromptAnswer::Yes }) {
        if (answer == PromptAnswer::Yes) {
            doc.edit();
            doc.document.autosave();
        }
        // The next start of the program opens the same song.
        Document next;
        ScriptedPrompts answers({ answer });
        next.document.setFolders(doc.folder.file("songs"), {}, {});
        next.document.setSongPath(path);
        next.document.loadSongFile();
        EXPECT_EQ(answers.captions(), std::vector<std::u16string> { u"Recover" });
        EXPECT_EQ(next.song.player().pattern(0).cell(0, 1).isNote(), answer == PromptAnswer::Yes);
        EXPECT_EQ(next.document.isDirty(), answer == PromptAnswer::Yes);
        EXPECT_EQ(std::filesystem::exists(copy), answer == PromptAnswer::Yes) << "declined, the copy goes";
    }

    // Saving, or giving up the changes, leaves no copy.
    doc.document.save();
    EXPECT_FALSE(std::filesystem::exists(copy));
    doc.edit();
    doc.document.autosave();
    ScriptedPrompts no({ PromptAnswer::No });
    doc.document.exitApp();
    EXPECT_TRUE(doc.host.closed);
    EXPECT_FALSE(std::filesystem::exists(copy));
}
