#include "Sound/SongReader.h"

#include "Sound/SampleLocator.h"
#include "Sound/SongFile.h"
#include "base/ErrorReporter.h"
#include "base/Path.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace pulsara {

using namespace songfile;

namespace {

// Where the reader reports; the lines are those of the system's message table.
constexpr int kFourByteReadLine = 10;
constexpr int kTwoByteReadLine = 17;
constexpr int kOneByteReadLine = 24;
constexpr int kEightByteReadLine = 31;
constexpr int kNotASongLine = 116;
constexpr int kVolumeLine = 141;
constexpr int kTempoLine = 146;
constexpr int kStepsPerPatternLine = 151;
constexpr int kInstrumentVolumeLine = 174;
constexpr int kEditorShownLine = 190;
constexpr int kBeatsPerPatternLine = 200;
constexpr int kLoopStartLine = 205;
constexpr int kLoopEndLine = 207;
constexpr int kViewValueLine = 229;
constexpr int kViewPairFirstLine = 234;
constexpr int kViewPairSecondLine = 235;
constexpr int kColumnLine = 272;
constexpr int kStepIndexLine = 288;
constexpr int kStepRateLine = 293;
constexpr int kStepVolumeLine = 294;
constexpr int kStepParameterLine = 295;

// Little-endian, whatever the host.
uint64_t littleEndian(const uint8_t* bytes, std::size_t count)
{
    uint64_t value = 0;
    for (std::size_t i = count; i-- > 0;)
        value = value << 8 | bytes[i];
    return value;
}

// Song files keep the format's '\' separators; in memory paths are native.
PathString nativeSeparators(const PathString& stored)
{
    PathString native;
    for (char16_t unit : stored.view())
        native.append(unit == u'\\' ? kPathSeparator : unit);
    return native;
}

} // namespace

SongReader::SongReader(Song& song, SampleLocator& locator, std::span<const uint8_t> data, DataEnd dataEnd)
    : song_(song)
    , locator_(locator)
    , data_(data)
    , dataEnd_(dataEnd)
{
}

int SongReader::read()
{
    char magic[sizeof kMagic] {};
    if (!readBytes(magic, sizeof magic, kFourByteReadLine) || std::memcmp(magic, kMagic, sizeof magic) != 0) {
        reportError(&errorContext(), kRecoverable, kSource, kNotASongLine, u"Not a kvSong file");
        return 0;
    }
    SongPlayer& player = song_.player();
    bool wasPlaying = player.isPlaying();
    if (wasPlaying)
        player.stop();
    editorToShow_ = song_.editorShown();
    song_.reset();

    readItems();

    song_.setEditorShown(editorToShow_);
    if (wasPlaying)
        player.start();
    return 1;
}

void SongReader::readItems()
{
    SongPlayer& player = song_.player();
    for (uint32_t tag = readCode(); tag != kEndOfItem; tag = readCode()) {
        switch (tag) {
        case kVolume:
            if (auto volume = readNumber(kVolumeLine))
                player.setVolume(*volume);
            skipRest();
            break;
        case kTempo:
            if (auto tempo = readNumber(kTempoLine))
                player.setTempo(*tempo);
            skipRest();
            break;
        case kStepsPerPattern:
            if (auto steps = readInteger(kStepsPerPatternLine))
                song_.setStepsPerPattern(static_cast<uint32_t>(*steps));
            skipRest();
            break;
        case kBeatsPerPattern:
            if (auto beats = readInteger(kBeatsPerPatternLine))
                song_.setBeatsPerPattern(static_cast<uint32_t>(*beats));
            skipRest();
            break;
        case kEditorShown:
            if (auto editor = readInteger(kEditorShownLine))
                editorToShow_ = *editor;
            skipRest();
            break;
        case kLoop:
            readLoop();
            break;
        case kInstrument:
            readInstrument(instrumentsRead_++);
            break;
        case kPlaylistRow:
            readPlaylistRow(playlistRowsRead_++);
            break;
        case kPattern:
            readPattern(patternsRead_++);
            break;
        case kFirstView:
            readView(song_.view(0));
            break;
        case kSecondView:
            readView(song_.view(1));
            break;
        default:
            skipElement(tag);
            break;
        }
    }
}

void SongReader::readLoop()
{
    SongPlayer& player = song_.player();
    if (auto start = readInteger(kLoopStartLine))
        player.setLoopStart(*start);
    if (auto end = readInteger(kLoopEndLine))
        player.setLoopEnd(*end);
    skipRest();
}

void SongReader::readInstrument(uint32_t slot)
{
    // Blocks past the last slot are read (their values still have to be well-formed) and dropped.
    bool inRange = slot < Song::kInstruments;
    for (uint32_t tag = readCode(); tag != kEndOfItem; tag = readCode()) {
        switch (tag) {
        case kVolume:
            if (auto volume = readNumber(kInstrumentVolumeLine); volume && inRange)
                song_.instrument(slot).setVolume(*volume);
            skipRest();
            break;
        case kSamplePath: {
            PathString stored;
            if (readStringItem(stored) && !stored.empty() && inRange)
                locator_.locateSample(song_, nativeSeparators(stored).view(), slot);
            break;
        }
        case kName: {
            PathString name;
            if (readStringItem(name) && !name.empty() && inRange)
                song_.instrument(slot).setName(name.view());
            break;
        }
        default:
            skipElement(tag);
            break;
        }
    }
}

void SongReader::readPlaylistRow(uint32_t row)
{
    Playlist& playlist = song_.player().playlist();
    for (uint32_t tag = readCode(); tag != kEndOfItem; tag = readCode()) {
        if (tag == kStep || tag == kVolume) {
            // The playlist ignores rows and columns outside it.
            if (auto column = readInteger(kColumnLine))
                playlist.set(row, static_cast<uint32_t>(*column), 1.0f);
            skipRest();
        } else {
            skipElement(tag);
        }
    }
}

void SongReader::readPattern(uint32_t slot)
{
    SongPlayer& player = song_.player();
    // The player's own accessor falls back to pattern 0 out of range, so surplus blocks get none.
    StepGrid* pattern = slot < Song::kPatterns ? &player.pattern(slot) : nullptr;
    uint32_t rowsRead = 0;
    for (uint32_t tag = readCode(); tag != kEndOfItem; tag = readCode()) {
        switch (tag) {
        case kName: {
            PathString name;
            if (readStringItem(name) && !name.empty())
                player.setPatternName(slot, name.view());
            break;
        }
        case kPlaylistRow:
            readPatternRow(pattern, rowsRead++);
            break;
        default:
            skipElement(tag);
            break;
        }
    }
}

void SongReader::readPatternRow(StepGrid* pattern, uint32_t row)
{
    for (uint32_t tag = readCode(); tag != kEndOfItem; tag = readCode()) {
        if (tag == kStep || tag == kVolume)
            readStep(pattern, row);
        else
            skipElement(tag);
    }
}

void SongReader::readStep(StepGrid* pattern, uint32_t row)
{
    std::optional<int32_t> index = readInteger(kStepIndexLine);
    Step step = kDefaultNote;
    for (uint32_t tag = readCode(); tag != kEndOfItem; tag = readCode()) {
        switch (tag) {
        case kRate:
            if (auto rate = readNumber(kStepRateLine))
                step.rate = *rate;
            skipRest();
            break;
        case kVolume:
            if (auto volume = readNumber(kStepVolumeLine))
                step.volume = *volume;
            skipRest();
            break;
        case kParameter:
            if (auto parameter = readInteger(kStepParameterLine))
                step.parameter = *parameter;
            skipRest();
            break;
        default:
            skipElement(tag);
            break;
        }
    }
    // A step that the end of the data cut off is not a step before the cut; the grid ignores
    // rows and steps outside it.
    if (pattern && index && !atEnd_)
        pattern->setCell(row, static_cast<uint32_t>(*index), step);
}

void SongReader::readView(EditorViewState& view)
{
    for (uint32_t tag = readCode(); tag != kEndOfItem; tag = readCode()) {
        switch (tag) {
        case kViewValue:
            if (auto value = readInteger(kViewValueLine))
                view.value = *value;
            skipRest();
            break;
        case kViewPair:
            if (auto first = readInteger(kViewPairFirstLine))
                view.pair[0] = *first;
            if (auto second = readInteger(kViewPairSecondLine))
                view.pair[1] = *second;
            skipRest();
            break;
        default:
            skipElement(tag);
            break;
        }
    }
}

uint32_t SongReader::readCode()
{
    if (atEnd_)
        return kEndOfItem;
    uint8_t first = 0;
    if (!readBytes(&first, 1, kOneByteReadLine))
        return kEndOfItem;
    if (first < kTwoByteCodeMark)
        return first;
    uint8_t second = 0;
    if (!readBytes(&second, 1, kOneByteReadLine))
        return kEndOfItem;
    return uint32_t { first } * 256 + second;
}

std::optional<int32_t> SongReader::readInteger(int corruptLine)
{
    uint8_t bytes[4] {};
    std::size_t size = 0;
    int readLine = 0;
    switch (uint32_t type = readCode()) {
    case kByte:
        size = 1;
        readLine = kOneByteReadLine;
        break;
    case kWord:
        size = 2;
        readLine = kTwoByteReadLine;
        break;
    case kLong:
        size = 4;
        readLine = kFourByteReadLine;
        break;
    default:
        // The end of the data is a cut, not a fault of the file.
        if (type != kEndOfItem || !atEnd_)
            reportCorrupt(corruptLine);
        return std::nullopt;
    }
    if (!readBytes(bytes, size, readLine))
        return std::nullopt;
    return static_cast<int32_t>(littleEndian(bytes, size));
}

std::optional<float> SongReader::readNumber(int corruptLine)
{
    uint8_t bytes[8] {};
    uint32_t type = readCode();
    if (type == kLong) {
        if (!readBytes(bytes, 4, kFourByteReadLine))
            return std::nullopt;
        return std::bit_cast<float>(static_cast<uint32_t>(littleEndian(bytes, 4)));
    }
    if (type == kDouble) {
        if (!readBytes(bytes, 8, kEightByteReadLine))
            return std::nullopt;
        return static_cast<float>(std::bit_cast<double>(littleEndian(bytes, 8)));
    }
    if (type != kEndOfItem || !atEnd_)
        reportCorrupt(corruptLine);
    return std::nullopt;
}

bool SongReader::readStringItem(PathString& out)
{
    uint32_t type = readCode();
    if (type != kString) {
        // Not a string: the item is ignored. A 0 has closed it already.
        if (type != kEndOfItem) {
            skipElement(type);
            skipRest();
        }
        return false;
    }
    out.clear();
    // An overlong string is the fatal overflow of the path buffer.
    for (auto unit = readUnit(); unit && *unit != 0; unit = readUnit())
        out.append(static_cast<char16_t>(*unit));
    bool complete = !atEnd_;
    skipRest();
    return complete;
}

std::optional<uint16_t> SongReader::readUnit()
{
    uint8_t bytes[2] {};
    if (!readBytes(bytes, 2, kTwoByteReadLine))
        return std::nullopt;
    return static_cast<uint16_t>(littleEndian(bytes, 2));
}

bool SongReader::readBytes(void* into, std::size_t count, int failLine)
{
    std::size_t available = data_.size() - offset_;
    if (count <= available) {
        std::memcpy(into, data_.data() + offset_, count);
        offset_ += count;
        return true;
    }
    if (dataEnd_ == DataEnd::ReadError) {
        reportCorrupt(failLine);
        return false;
    }
    // A short read: what came is kept, and the end of the data is reached.
    std::memcpy(into, data_.data() + offset_, available);
    offset_ = data_.size();
    atEnd_ = true;
    return false;
}

void SongReader::skipRest()
{
    // Nested items are counted rather than recursed into, so no depth of nesting can exhaust
    // the stack; the end of the data closes every level at once.
    uint64_t depth = 1;
    while (depth > 0) {
        uint32_t code = readCode();
        if (code == kEndOfItem)
            --depth;
        else if (code <= kBlob)
            skipValue(code);
        else
            ++depth;
    }
}

void SongReader::skipElement(uint32_t code)
{
    if (code == kEndOfItem)
        return;
    if (code <= kBlob)
        skipValue(code);
    else
        skipRest();
}

void SongReader::skipValue(uint32_t type)
{
    uint8_t bytes[8] {};
    switch (type) {
    case kByte:
        readBytes(bytes, 1, kOneByteReadLine);
        break;
    case kWord:
        readBytes(bytes, 2, kTwoByteReadLine);
        break;
    case kLong:
        readBytes(bytes, 4, kFourByteReadLine);
        break;
    case kDouble:
        readBytes(bytes, 8, kEightByteReadLine);
        break;
    case kString:
        while (auto unit = readUnit()) {
            if (*unit == 0)
                break;
        }
        break;
    case kBlob:
        if (readBytes(bytes, 4, kFourByteReadLine))
            skipBytes(littleEndian(bytes, 4));
        break;
    default:
        break;
    }
}

void SongReader::skipBytes(uint64_t count)
{
    // Skipping past the end reads nothing; the next read finds the end.
    offset_ += static_cast<std::size_t>(std::min<uint64_t>(count, data_.size() - offset_));
}

void SongReader::reportCorrupt(int line)
{
    reportError(&errorContext(), kFatal, kSource, line, u"The song file is corrupted");
}

} // namespace pulsara
