#include "Sound/SongWriter.h"

#include "Sound/SampleLocator.h"
#include "Sound/SongFile.h"
#include "base/Path.h"

#include <bit>

namespace pulsara {

using namespace songfile;

SongWriter::SongWriter(const Song& song, SampleLocator& locator, std::u16string_view songPath)
    : song_(song)
    , locator_(locator)
    , songPath_(songPath)
{
}

std::vector<uint8_t> SongWriter::write()
{
    // A large song is megabytes of notes: room for all of them at once spares the copies and
    // page faults of a buffer that grows as it goes.
    size_t notes = 0;
    for (uint32_t pattern = 0; pattern < Song::kPatterns; ++pattern) {
        const StepGrid& grid = song_.player().pattern(pattern);
        for (uint32_t row = 0; row < Song::kInstruments; ++row) {
            for (uint32_t step = 0; step < StepGrid::kCellsPerRow; ++step)
                notes += grid.cell(row, step).isNote() ? 1 : 0;
        }
    }
    bytes_.clear();
    bytes_.reserve(kBytesPerNote * notes + kBytesBesideNotes);
    bytes_.assign(std::begin(kMagic), std::end(kMagic));
    const SongPlayer& player = song_.player();
    writeNumberItem(kVolume, player.volume());
    writeNumberItem(kTempo, player.tempo());
    writeIntegerItem(kStepsPerPattern, static_cast<int32_t>(song_.stepsPerPattern()));
    for (uint8_t slot : song_.instrumentOrder())
        writeInstrument(song_.instrument(slot));
    for (uint8_t slot : song_.patternOrder()) {
        writePlaylistRow(slot);
        writePattern(slot);
    }
    writeIntegerItem(kBeatsPerPattern, static_cast<int32_t>(song_.beatsPerPattern()));
    writeIntegerItem(kEditorShown, song_.editorShown());
    writeView(kFirstView, song_.view(0));
    writeView(kSecondView, song_.view(1));
    writeCode(kLoop);
    writeInteger(player.loopStart());
    writeInteger(player.loopEnd());
    writeCode(kEndOfItem);
    return std::move(bytes_);
}

void SongWriter::writeInstrument(const Instrument& instrument)
{
    writeCode(kInstrument);
    if (!instrument.name().empty())
        writeStringItem(kName, instrument.name());
    // Every slot gets its block; an empty one stores an empty path.
    PathString stored;
    const PathString& samplePath = instrument.sample().path();
    if (!samplePath.empty())
        stored = locator_.storedSamplePath(samplePath.view(), songPath_);
    PathString withBackslashes;
    for (char16_t unit : stored.view())
        withBackslashes.append(unit == kPathSeparator ? u'\\' : unit);
    writeStringItem(kSamplePath, withBackslashes.view());
    writeNumberItem(kVolume, instrument.volume());
    writeCode(kEndOfItem);
}

void SongWriter::writePlaylistRow(uint32_t pattern)
{
    const Playlist& playlist = song_.player().playlist();
    writeCode(kPlaylistRow);
    for (uint32_t column = 0; column < playlist.columns(); ++column) {
        if (playlist.isOn(pattern, column))
            writeIntegerItem(kStep, static_cast<int32_t>(column));
    }
    writeCode(kEndOfItem);
}

void SongWriter::writePattern(uint32_t pattern)
{
    const SongPlayer& player = song_.player();
    const StepGrid& grid = player.pattern(pattern);
    writeCode(kPattern);
    if (!player.patternName(pattern).empty())
        writeStringItem(kName, player.patternName(pattern));
    for (uint8_t row : song_.instrumentOrder()) {
        writeCode(kPlaylistRow);
        // All 64 cells: notes beyond the current length are kept, as the grid keeps them.
        for (uint32_t step = 0; step < StepGrid::kCellsPerRow; ++step) {
            Step cell = grid.cell(row, step);
            if (cell.isNote())
                writeStep(step, cell);
        }
        writeCode(kEndOfItem);
    }
    writeCode(kEndOfItem);
}

void SongWriter::writeStep(uint32_t index, Step step)
{
    writeCode(kStep);
    writeInteger(static_cast<int32_t>(index));
    writeNumberItem(kRate, step.rate);
    writeNumberItem(kVolume, step.volume);
    writeIntegerItem(kParameter, step.parameter);
    writeCode(kEndOfItem);
}

void SongWriter::writeView(uint32_t tag, const EditorViewState& view)
{
    writeCode(tag);
    writeIntegerItem(kViewValue, view.value);
    writeCode(kViewPair);
    writeInteger(view.pair[0]);
    writeInteger(view.pair[1]);
    writeCode(kEndOfItem);
    writeCode(kEndOfItem);
}

void SongWriter::writeIntegerItem(uint32_t tag, int32_t value)
{
    writeCode(tag);
    writeInteger(value);
    writeCode(kEndOfItem);
}

void SongWriter::writeNumberItem(uint32_t tag, float value)
{
    writeCode(tag);
    writeNumber(value);
    writeCode(kEndOfItem);
}

void SongWriter::writeStringItem(uint32_t tag, std::u16string_view text)
{
    writeCode(tag);
    writeString(text);
    writeCode(kEndOfItem);
}

void SongWriter::writeCode(uint32_t code)
{
    // Every code of the format is below 128, so one byte always does.
    bytes_.push_back(static_cast<uint8_t>(code));
}

void SongWriter::writeInteger(int32_t value)
{
    writeCode(kLong);
    writeLittleEndian(static_cast<uint32_t>(value), 4);
}

void SongWriter::writeNumber(double value)
{
    writeCode(kDouble);
    writeLittleEndian(std::bit_cast<uint64_t>(value), 8);
}

void SongWriter::writeString(std::u16string_view text)
{
    writeCode(kString);
    for (char16_t unit : text)
        writeLittleEndian(unit, 2);
    writeLittleEndian(0, 2);
}

void SongWriter::writeLittleEndian(uint64_t value, std::size_t count)
{
    const size_t at = bytes_.size();
    bytes_.resize(at + count);
    for (std::size_t i = 0; i < count; ++i)
        bytes_[at + i] = static_cast<uint8_t>(value >> (8 * i));
}

} // namespace pulsara
