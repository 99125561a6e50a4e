#include "App/SongDocument.h"

#include "App/Autosave.h"
#include "App/SampleSearch.h"
#include "GUI/FileDialogs.h"
#include "GUI/Prompts.h"
#include "GUI/editors/SongEdits.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/StoredSamplePath.h"
#include "base/ErrorReporter.h"
#include "base/Path.h"

#include <QApplication>
#include <QCursor>

#include <algorithm>
#include <filesystem>

namespace pulsara {

namespace {

constexpr const char* kSource = "App/document";
constexpr int kExportOverSongLine = 1;
constexpr size_t kTemplateExtensionLength = 4; // ".kqt"

// The wait cursor for as long as it lives.
class WaitCursor {
public:
    WaitCursor()
    {
        if (QApplication::instance())
            QApplication::setOverrideCursor(Qt::WaitCursor);
    }
    ~WaitCursor()
    {
        if (QApplication::instance())
            QApplication::restoreOverrideCursor();
    }
    WaitCursor(const WaitCursor&) = delete;
    WaitCursor& operator=(const WaitCursor&) = delete;
};

std::u16string folderOf(std::u16string_view path)
{
    PathString folder;
    parentFolder(folder, path);
    return std::u16string(folder.view());
}

bool isSameFile(std::u16string_view a, std::u16string_view b)
{
    std::error_code error;
    return std::filesystem::equivalent(nativePath(a), nativePath(b), error) && !error;
}

} // namespace

SongDocument::SongDocument(Song& song, SongEdits& edits, DocumentHost& host)
    : song_(song)
    , edits_(edits)
    , host_(host)
{
    songPath_.filter = kSongFilter;
    exportPath_.filter = kWavFilter;
}

void SongDocument::setFolders(std::u16string songsFolder, std::u16string templatesFolder, std::u16string samplesFolder)
{
    songsFolder_ = std::move(songsFolder);
    templatesFolder_ = std::move(templatesFolder);
    samplesFolder_ = std::move(samplesFolder);
}

// The save-changes question.

int SongDocument::askSaveChanges(std::u16string_view caption)
{
    if (!isDirty())
        return 0;
    std::u16string text = songName_.empty() ? u"Save changes?" : u"Save changes to \"" + songName_ + u"\"?";
    switch (prompts().ask(text, caption, PromptButtons::YesNoCancel)) {
    case PromptAnswer::No:
        // The changes are given up, the copy that kept them for a crash with them.
        discardAutosave();
        return 0;
    case PromptAnswer::Yes:
        return save() ? 0 : 1;
    default:
        return 1;
    }
}

// New songs.

int SongDocument::newEmptySong()
{
    if (askSaveChanges(u"New Song"))
        return 0;
    song_.reset();
    song_.player().setTempo(Song::kStartTempo);
    song_.player().setVolume(Song::kStartVolume);
    makeUntitled();
    host_.showNewSong();
    return 1;
}

int SongDocument::newFromTemplate(uint32_t index)
{
    if (askSaveChanges(u"New song"))
        return 0;
    if (index >= templates_.size() || templates_[index].empty())
        return 0;
    PathString path;
    joinPath(path, templatesFolder_, templates_[index] + u".kqt");
    songPath_.assign(path.view());
    // A clean song now: the template's questions have been answered already.
    setDirty(false);
    loadingTemplate_ = true;
    loadSongFile();
    loadingTemplate_ = false;
    makeUntitled();
    return 1;
}

void SongDocument::makeUntitled()
{
    songName_.clear();
    songPath_.clear();
    flags_ = (flags_ & ~kDirtyFlag) | kUntitledFlag;
    edits_.forgetHistory();
    updateTitle();
}

// Opening.

int SongDocument::openSong()
{
    if (askSaveChanges(u"Open Song"))
        return 0;
    FilePath kept = songPath_;
    // The dialog starts in the song's folder with no name chosen.
    std::u16string folder = songPath_.empty() ? songsFolder_ : folderOf(songPath_.view());
    songPath_.assign(folder + kPathSeparator);
    if (!chooseOpenFile(songPath_)) {
        songPath_.assign(kept.view());
        return 0;
    }
    // The user has answered for the old song; it is replaced now.
    setDirty(false);
    return loadSongFile();
}

int SongDocument::loadSongFile()
{
    flags_ &= ~kSkipQuestionsFlag;
    bool loaded = false;
    if (!songPath_.empty()) {
        WaitCursor wait;
        loaded = loadSong(song_, songPath_.view(), *this);
    }
    if (!loaded) {
        newEmptySong();
        return 0;
    }
    const bool changedByLoad = flags_ & kDirtyAfterLoadFlag;
    flags_ &= ~(kUntitledFlag | kSkipQuestionsFlag | kDirtyAfterLoadFlag | kDirtyFlag);
    edits_.forgetHistory();
    updateTitle();
    const bool recovered = offerRecovery(autosavePath(),
        u"\"" + songName_ + u"\" has changes that were not saved, kept when the program last ended. Recover them?");
    // A sample found elsewhere makes the song differ from its file, as recovered changes do.
    if (changedByLoad || recovered) {
        edits_.markUnsaved();
        flags_ |= kDirtyFlag;
    }
    updateTitle();
    if (!loadingTemplate_)
        host_.rememberSong(songPath_.view());
    host_.showNewSong();
    return 1;
}

bool SongDocument::offerRecovery(const std::u16string& path, std::u16string_view question)
{
    if (!Autosave::isNewer(path, (flags_ & kUntitledFlag) ? std::u16string_view() : songPath_.view()))
        return false;
    if (prompts().ask(question, u"Recover", PromptButtons::YesNo) != PromptAnswer::Yes) {
        Autosave::remove(path);
        return false;
    }
    flags_ &= ~kSkipQuestionsFlag;
    return loadSong(song_, path, *this) == 1;
}

void SongDocument::offerUntitledRecovery()
{
    const std::u16string path = Autosave::pathFor({}, songsFolder_);
    const uint32_t flags = flags_;
    flags_ |= kUntitledFlag;
    if (!offerRecovery(path, u"An untitled song has changes that were not saved, kept when the program last ended. Recover them?")) {
        flags_ = flags;
        return;
    }
    songPath_.clear();
    songName_.clear();
    edits_.forgetHistory();
    edits_.markUnsaved();
    flags_ |= kDirtyFlag | kUntitledFlag;
    updateTitle();
    host_.showNewSong();
}

std::u16string SongDocument::autosavePath() const
{
    return Autosave::pathFor((flags_ & kUntitledFlag) ? std::u16string_view() : songPath_.view(), songsFolder_);
}

bool SongDocument::autosave()
{
    if (!isDirty())
        return false;
    host_.storeViewState();
    return Autosave::write(song_, *this, autosavePath());
}

void SongDocument::discardAutosave()
{
    Autosave::remove(autosavePath());
}

// Saving.

bool SongDocument::writeTo(std::u16string_view path)
{
    WaitCursor wait;
    host_.storeViewState();
    return saveSong(song_, path, *this);
}

void SongDocument::afterSave(bool saved)
{
    // A failed write keeps the song modified (and untitled when it was), so the next exit asks.
    if (!saved)
        return;
    // The file holds the song now; the copies made for a crash are older than it.
    Autosave::remove(Autosave::pathFor({}, songsFolder_));
    Autosave::remove(autosavePath());
    flags_ &= ~(kDirtyFlag | kUntitledFlag);
    edits_.markSaved();
    updateTitle();
    host_.rememberSong(songPath_.view());
}

int SongDocument::save()
{
    if (songPath_.empty() || (flags_ & kUntitledFlag))
        return saveAs();
    bool saved = writeTo(songPath_.view());
    afterSave(saved);
    return saved ? 1 : 0;
}

int SongDocument::saveAs()
{
    FilePath chosen = songPath_;
    if (chosen.empty())
        chosen.assign(songsFolder_ + kPathSeparator);
    if (!chooseSaveFile(chosen))
        return 0;
    if (!writeTo(chosen.view()))
        return 0;
    discardAutosave();
    songPath_ = chosen;
    afterSave(true);
    buildTemplatesMenu();
    return 1;
}

std::u16string SongDocument::nextVersionPath(std::u16string_view path)
{
    const size_t nameStart = path.find_last_of(kPathSeparator) + 1;
    size_t dot = path.rfind(u'.');
    // A file name without a dot has no extension (a dot in a folder's name is not one).
    if (dot == std::u16string_view::npos || dot < nameStart)
        dot = path.size();
    const std::u16string_view extension = dot < path.size() ? path.substr(dot + 1) : std::u16string_view();
    size_t digits = dot;
    while (digits > nameStart && path[digits - 1] >= u'0' && path[digits - 1] <= u'9')
        --digits;
    uint64_t version = 1;
    std::u16string_view base = path.substr(0, dot);
    if (digits > nameStart && path[digits - 1] == u'_') {
        base = path.substr(0, digits - 1);
        // "song_.kqu" has no number to read: it starts from 1 too.
        if (digits < dot) {
            version = 0;
            for (size_t i = digits; i < dot && version < UINT32_MAX; ++i)
                version = version * 10 + uint64_t(path[i] - u'0');
        }
    }
    for (;; ++version) {
        std::u16string candidate = std::u16string(base) + u"_" + fromUtf8(std::to_string(version));
        if (dot < path.size())
            candidate += u"." + std::u16string(extension);
        if (!fileExists(candidate))
            return candidate;
    }
}

int SongDocument::saveNewVersion()
{
    if (songPath_.empty())
        return saveAs();
    std::u16string path = nextVersionPath(songPath_.view());
    if (!writeTo(path))
        return 0;
    discardAutosave();
    songPath_.assign(path);
    afterSave(true);
    buildTemplatesMenu();
    return 1;
}

// Export and exit.

int SongDocument::exportWav()
{
    FilePath chosen = exportPath_;
    if (chosen.empty()) {
        PathString suggested;
        joinPath(suggested, songPath_.empty() ? songsFolder_ : folderOf(songPath_.view()),
            (songName_.empty() ? std::u16string(u"Untitled") : songName_) + u".wav");
        chosen.assign(suggested.view());
    }
    if (!chooseSaveFile(chosen))
        return 0;
    exportPath_ = chosen;
    if (!songPath_.empty() && isSameFile(chosen.view(), songPath_.view())) {
        std::u16string message = u"can't write file \"" + std::u16string(chosen.view()) + u"\"";
        reportError(&errorContext(), kRecoverable, kSource, kExportOverSongLine, message);
        return 0;
    }
    const bool wasRunning = host_.stopForExport();
    bool exported = false;
    {
        WaitCursor wait;
        exported = host_.exportSong(chosen.view());
    }
    host_.resumeAfterExport(wasRunning);
    return exported ? 1 : 0;
}

int SongDocument::exitApp()
{
    if (askSaveChanges(u"Exit"))
        return 0;
    discardAutosave();
    host_.closeWindow();
    return 1;
}

// The title and the templates.

std::u16string SongDocument::songNameOf(std::u16string_view path)
{
    std::u16string_view name = pathFileName(path);
    return std::u16string(name.substr(0, name.find(u'.')));
}

void SongDocument::updateTitle()
{
    const std::u16string mark = isDirty() ? u"*" : u"";
    if (flags_ & kUntitledFlag) {
        title_ = u"Pulsara - Untitled" + mark;
    } else {
        songName_ = songNameOf(songPath_.view());
        title_ = u"Pulsara - " + songName_ + mark;
    }
    host_.setTitle(title_);
}

void SongDocument::setDirty(bool dirty)
{
    if (dirty == isDirty())
        return;
    flags_ = dirty ? flags_ | kDirtyFlag : flags_ & ~kDirtyFlag;
    updateTitle();
}

void SongDocument::buildTemplatesMenu()
{
    std::vector<std::u16string> found;
    std::error_code error;
    for (const auto& entry : std::filesystem::directory_iterator(nativePath(templatesFolder_), error)) {
        std::u16string name = entry.path().filename().u16string();
        if (entry.is_regular_file(error) && name.size() > kTemplateExtensionLength
            && name.compare(name.size() - kTemplateExtensionLength, kTemplateExtensionLength, u".kqt") == 0)
            found.push_back(name.substr(0, name.size() - kTemplateExtensionLength));
    }
    // An empty or missing folder leaves the menu as it was.
    if (found.empty())
        return;
    templates_ = std::move(found);
    host_.setTemplatesMenu(templates_);
}

// Samples.

void SongDocument::locateSample(Song& song, std::u16string_view storedName, uint32_t instrument)
{
    if (flags_ & kSkipQuestionsFlag)
        return;
    PathString lastTried;
    std::optional<PathString> found = findSample(storedName, folderOf(songPath_.view()), samplesFolder_, &lastTried);
    if (!found) {
        std::u16string text = u"Can't find file\"" + std::u16string(lastTried.view()) + u"\", do you want to try to find it manually?";
        switch (prompts().ask(text, u"Sampler", PromptButtons::YesNoCancel)) {
        case PromptAnswer::Yes: {
            FilePath chosen(lastSample_.empty() ? lastTried.view() : lastSample_.view());
            chosen.filter = kSampleFilter;
            if (!chooseOpenFile(chosen))
                return;
            found = PathString(chosen.view());
            lastSample_.assign(chosen.view());
            samplesFolder_ = folderOf(chosen.view());
            // The song now names another file than the one saved in it.
            flags_ |= kDirtyAfterLoadFlag;
            break;
        }
        case PromptAnswer::No:
            return;
        default:
            flags_ |= kSkipQuestionsFlag;
            return;
        }
    }
    song.instrument(instrument).sample().load(found->view());
}

PathString SongDocument::storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath)
{
    return makeStoredSamplePath(samplePath, songPath, samplesFolder_);
}

} // namespace pulsara
