#pragma once

#include <cstdint>
#include <string_view>

namespace pulsara {

class SampleLocator;
class Song;

// Songs (".kqu") and templates (".kqt"): the four bytes "KVS0", then tagged items up to the end
// of the file. An item is a tag code, then values (each a type code and its bytes) and nested
// items in any mix, then a 0 code. Numbers are little-endian.
namespace songfile {

constexpr char kMagic[4] = { 'K', 'V', 'S', '0' };
constexpr const char* kSource = "Sound/songFile";

// Codes below 128 take one byte; a first byte b >= 128 is followed by c, giving b * 256 + c.
constexpr uint32_t kTwoByteCodeMark = 128;

// The type code that precedes a value.
enum ValueType : uint32_t {
    kEndOfItem = 0,
    kByte = 1,
    kWord = 2,
    kLong = 3, // an unsigned integer, or a float where a number is expected
    kDouble = 4,
    kString = 5, // UTF-16 units up to and including a 0 unit
    kBlob = 6, // a 4-byte length n, then n bytes
};

enum Tag : uint32_t {
    kVolume = 8, // also an instrument's and a step's volume; the reader accepts it for kStep too
    kTempo = 9,
    kInstrument = 10,
    kPlaylistRow = 11, // also a pattern's row item
    kPattern = 13,
    kStepsPerPattern = 14,
    kSamplePath = 15,
    kStep = 16, // also a playlist row's column
    kEditorShown = 17,
    kFirstView = 18,
    kSecondView = 19,
    kViewValue = 20,
    kViewPair = 21,
    kRate = 22,
    kBeatsPerPattern = 23,
    kLoop = 24,
    kParameter = 25,
    kName = 26,
};

} // namespace songfile

// Loads the song file at `path` into the song, which is first emptied as for a new song (tempo
// and master volume stay unless the file sets them). Samples are found and loaded through the
// locator. A playing song is stopped while loading and started again afterwards. Returns 1 when
// loaded, 0 (reported) when the file cannot be opened or is not a song file; the song is
// untouched then. A corrupt file is the fatal "The song file is corrupted".
int loadSong(Song&, std::u16string_view path, SampleLocator&);

// Writes the whole song to `path` (through a temporary file in the same folder that replaces
// it, so that a failed save never leaves a half-written song), keeping the file it replaces as
// `path`.bak unless told not to. The locator gives the stored form of each sample path. Returns 1 when the new file
// is in place; otherwise reports "cant open kvSong file to save" with the path and the reason,
// leaves the old file untouched and returns 0.
enum class Backup { Keep, None };
int saveSong(Song&, std::u16string_view path, SampleLocator&, Backup = Backup::Keep);

} // namespace pulsara
