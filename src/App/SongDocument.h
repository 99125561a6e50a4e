#pragma once

#include "GUI/FilePath.h"
#include "Sound/SampleLocator.h"

#include <cstdint>
#include <string>
#include <vector>

namespace pulsara {

class Song;
class SongEdits;

// What the document asks of the window that shows it.
class DocumentHost {
public:
    virtual ~DocumentHost() = default;

    // The song was replaced (new, opened, from a template): show it from its start.
    virtual void showNewSong() = 0;
    virtual void setTitle(std::u16string_view) = 0;
    // Before the song is written: the editors' view state goes into the song.
    virtual void storeViewState() = 0;
    // Around an export: playing stops and the device is let go (true when the stream ran), and
    // afterwards the stream runs again if it did.
    virtual bool stopForExport() = 0;
    virtual void resumeAfterExport(bool wasRunning) = 0;
    // Renders the song to the WAV file, showing its progress; false when it failed or was
    // cancelled (the file is gone then).
    virtual bool exportSong(std::u16string_view path) = 0;
    virtual void closeWindow() = 0;
    // The templates found, in the order of the folder, for File > New.
    virtual void setTemplatesMenu(const std::vector<std::u16string>& names) = 0;
    // A song file was opened or saved under this path (File > Open Recent).
    virtual void rememberSong(std::u16string_view path) = 0;
};

// The song as a file: where it lives and what it is called, whether it is modified or
// untitled, the window's title, and the commands that start, open, save and export songs,
// asking the user where the song would otherwise be lost. It also finds the samples a song file
// names and says how a saved song names them.
//
// GUI thread only.
class SongDocument : public SampleLocator {
public:
    // documentFlags
    static constexpr uint32_t kDirtyFlag = 1;
    static constexpr uint32_t kUntitledFlag = 2;
    static constexpr uint32_t kSkipQuestionsFlag = 4;
    static constexpr uint32_t kReleaseDeviceFlag = 8;
    static constexpr uint32_t kDirtyAfterLoadFlag = 16;

    static constexpr const char16_t* kSongFilter = u"Pulsara song files\0*.kqu\0Pulsara song template files\0*.kqt\0";
    static constexpr const char16_t* kWavFilter = u"RIFF Wave file\0*.wav\0";
    static constexpr const char16_t* kSampleFilter = u"PCM WaveFiles\0*.wav\0";

    SongDocument(Song&, SongEdits&, DocumentHost&);

    // The folders: songs (<Documents>/Pulsara), templates (<Documents>/Templates) and the one
    // samples are looked for in.
    void setFolders(std::u16string songsFolder, std::u16string templatesFolder, std::u16string samplesFolder);
    const std::u16string& songsFolder() const { return songsFolder_; }
    const std::u16string& templatesFolder() const { return templatesFolder_; }
    const std::u16string& samplesFolder() const { return samplesFolder_; }
    void setSamplesFolder(std::u16string folder) { samplesFolder_ = std::move(folder); }
    // The sample file the dialogs start at.
    const PathString& lastSample() const { return lastSample_; }
    void setLastSample(std::u16string_view path) { lastSample_.assign(path); }

    // 1 when the caller's action is to be abandoned (the user cancelled, or the save did not
    // happen), 0 to go on.
    int askSaveChanges(std::u16string_view caption);

    // The menu's commands; each returns 1 when done, 0 when cancelled or failed.
    int newEmptySong();
    int newFromTemplate(uint32_t index);
    int openSong();
    int save();
    int saveAs();
    int saveNewVersion();
    int exportWav();
    int exitApp();

    // Loads the song at songPath(); a song that cannot be read starts an empty one (1 loaded).
    // A newer automatic copy of the song, left by a crash, is offered instead.
    int loadSongFile();
    // Writes the automatic copy of a modified song (the song stays modified); true when one
    // was written.
    bool autosave();
    // At start-up: an untitled song a crash left behind is offered back.
    void offerUntitledRecovery();
    std::u16string autosavePath() const;
    // The song just became an unnamed one (a new song, a template).
    void makeUntitled();
    void updateTitle();
    // Lists the templates folder again for File > New.
    void buildTemplatesMenu();
    const std::vector<std::u16string>& templates() const { return templates_; }

    // The next free version name of a path: beat.kqu gives beat_1.kqu (or the first of
    // beat_2.kqu, beat_3.kqu... that does not exist), beat_7.kqu beat_8.kqu.
    static std::u16string nextVersionPath(std::u16string_view path);
    // The name a title shows for a path: the file name up to its first dot.
    static std::u16string songNameOf(std::u16string_view path);

    uint32_t flags() const { return flags_; }
    void setFlags(uint32_t flags) { flags_ = flags; }
    bool isDirty() const { return flags_ & kDirtyFlag; }
    // The edit history reached, or left, the saved song.
    void setDirty(bool);
    const FilePath& songPath() const { return songPath_; }
    void setSongPath(std::u16string_view path) { songPath_.assign(path); }
    const std::u16string& songName() const { return songName_; }
    const std::u16string& title() const { return title_; }
    const FilePath& exportPath() const { return exportPath_; }

    // SampleLocator
    void locateSample(Song&, std::u16string_view storedName, uint32_t instrument) override;
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) override;

private:
    // Writes the song to `path`; true when the file is in place.
    bool writeTo(std::u16string_view path);
    void afterSave(bool saved);
    // The song is being let go: its automatic copy goes too.
    void discardAutosave();
    // Offers the automatic copy at `path` in place of what is loaded; true when taken.
    bool offerRecovery(const std::u16string& path, std::u16string_view question);

    Song& song_;
    SongEdits& edits_;
    DocumentHost& host_;
    uint32_t flags_ = kUntitledFlag | kReleaseDeviceFlag;
    FilePath songPath_;
    FilePath exportPath_;
    std::u16string songName_;
    std::u16string title_;
    std::u16string songsFolder_;
    std::u16string templatesFolder_;
    std::u16string samplesFolder_;
    PathString lastSample_;
    std::vector<std::u16string> templates_;
    // Loads from File > New's templates do not go into the recent songs.
    bool loadingTemplate_ = false;
};

} // namespace pulsara
