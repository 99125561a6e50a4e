#pragma once

#include "Sound/Song.h"
#include "base/text.h"

#include <cstdint>
#include <optional>
#include <span>

namespace pulsara {

class SampleLocator;
class StepGrid;

// Reads the bytes of a song file into a song. Unknown items are skipped by their type codes;
// a known item whose value has the wrong type is the fatal "The song file is corrupted". When
// the data ends, every later code reads as 0, so all open items close and the song keeps what
// was read before the cut.
class SongReader {
public:
    // What lies after the data: the end of the file, or bytes the system failed to read (any
    // read that reaches them is a corrupt file).
    enum class DataEnd { EndOfFile, ReadError };

    SongReader(Song&, SampleLocator&, std::span<const uint8_t> data, DataEnd = DataEnd::EndOfFile);

    // Checks the magic, then empties the song and fills it from the items. Returns 1 when read,
    // 0 after reporting "Not a kvSong file" (the song is untouched then).
    int read();

private:
    void readItems();
    void readInstrument(uint32_t slot);
    void readPlaylistRow(uint32_t row);
    void readPattern(uint32_t slot);
    void readPatternRow(StepGrid*, uint32_t row);
    void readStep(StepGrid*, uint32_t row);
    void readView(EditorViewState&);
    void readLoop();

    // Codes and values. A value cut short by the end of the data reads as nullopt.
    uint32_t readCode();
    std::optional<int32_t> readInteger(int corruptLine);
    std::optional<float> readNumber(int corruptLine);
    // Reads the string value of an item and the rest of the item. False when the item holds no
    // string (it is then ignored) or the data ended inside it.
    bool readStringItem(PathString&);
    bool readBytes(void* into, std::size_t count, int failLine);
    std::optional<uint16_t> readUnit();

    // Skips the rest of the current item up to and including its 0.
    void skipRest();
    // Skips what `code`, just read, opens: a value for a type code, else a nested item.
    void skipElement(uint32_t code);
    void skipValue(uint32_t type);
    void skipBytes(uint64_t count);

    void reportCorrupt(int line);

    Song& song_;
    SampleLocator& locator_;
    std::span<const uint8_t> data_;
    DataEnd dataEnd_;
    std::size_t offset_ = 0;
    bool atEnd_ = false;
    int32_t editorToShow_ = 0;
    uint32_t instrumentsRead_ = 0;
    uint32_t playlistRowsRead_ = 0;
    uint32_t patternsRead_ = 0;
};

} // namespace pulsara
