#pragma once

#include <string>
#include <string_view>

namespace pulsara {

class SampleLocator;
class Song;

// The copy of a modified song that a crash leaves behind: a hidden file beside the song
// (.NAME.kqu.autosave), or .Untitled.autosave in the songs folder for a song without a name.
// It is written every few minutes while the song is modified and never counts as a save.
class Autosave {
public:
    static constexpr unsigned kPeriodMs = 2 * 60 * 1000;

    static std::u16string pathFor(std::u16string_view songPath, std::u16string_view songsFolder);
    // Writes the song there, in one piece; false when it could not.
    static bool write(Song&, SampleLocator&, std::u16string_view autosavePath);
    // An autosave that is worth offering: it exists, and is newer than the song's file (or the
    // song has no file).
    static bool isNewer(std::u16string_view autosavePath, std::u16string_view songPath);
    static void remove(std::u16string_view autosavePath);
};

} // namespace pulsara
