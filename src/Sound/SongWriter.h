#pragma once

#include "Sound/Song.h"

#include <cstdint>
#include <string_view>
#include <vector>

namespace pulsara {

class SampleLocator;

// Builds the bytes of a song file: the magic, then every item of the song in one fixed order,
// instruments and patterns in display order. Model floats are written widened to double,
// integers as 4-byte values, strings as UTF-16 with '\' separators in sample paths.
class SongWriter {
public:
    // `songPath` is where the file will be saved: sample paths are stored relative to it when
    // the locator says so.
    SongWriter(const Song&, SampleLocator&, std::u16string_view songPath);

    std::vector<uint8_t> write();

private:
    // A note's item: its code and index, rate and volume as doubles, parameter, end.
    static constexpr size_t kBytesPerNote = 36;
    // Enough for the rest of a full song: instruments, playlist, names, views.
    static constexpr size_t kBytesBesideNotes = 128 * 1024;

    void writeInstrument(const Instrument&);
    void writePlaylistRow(uint32_t pattern);
    void writePattern(uint32_t pattern);
    void writeStep(uint32_t index, Step);
    void writeView(uint32_t tag, const EditorViewState&);

    void writeIntegerItem(uint32_t tag, int32_t);
    void writeNumberItem(uint32_t tag, float);
    void writeStringItem(uint32_t tag, std::u16string_view);
    void writeCode(uint32_t);
    void writeInteger(int32_t);
    void writeNumber(double);
    void writeString(std::u16string_view);
    void writeLittleEndian(uint64_t value, std::size_t count);

    const Song& song_;
    SampleLocator& locator_;
    std::u16string_view songPath_;
    std::vector<uint8_t> bytes_;
};

} // namespace pulsara
