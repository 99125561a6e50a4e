#pragma once

// Helpers shared by the song file tests: a builder of song file bytes, a song with every
// setting changed, and a presenter for death tests.

#include "Sound/Song.h"
#include "base/ErrorReporter.h"
#include "base/text.h"
#include "support/RecordingLocator.h"
#include "support/ReportRecorder.h"
#include "support/WavBuilder.h"

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace pulsara::testing {

using test::RecordingLocator;
using test::ReportRecorder;

// Song file bytes, written the long way so that a test reads like the format description.
class SongBytes {
public:
    SongBytes& magic() { return raw({ 'K', 'V', 'S', '0' }); }
    // A tag or type code: one byte below 128, else two.
    SongBytes& code(uint32_t code)
    {
        if (code < 128)
            return raw({ static_cast<uint8_t>(code) });
        return raw({ static_cast<uint8_t>(code >> 8), static_cast<uint8_t>(code) });
    }
    SongBytes& end() { return code(0); }
    SongBytes& byteValue(uint8_t value) { return code(1).little(value, 1); }
    SongBytes& wordValue(uint16_t value) { return code(2).little(value, 2); }
    SongBytes& longValue(uint32_t value) { return code(3).little(value, 4); }
    SongBytes& floatValue(float value) { return code(3).little(std::bit_cast<uint32_t>(value), 4); }
    SongBytes& doubleValue(double value) { return code(4).little(std::bit_cast<uint64_t>(value), 8); }
    SongBytes& stringValue(std::u16string_view text)
    {
        code(5);
        for (char16_t unit : text)
            little(unit, 2);
        return little(0, 2);
    }
    SongBytes& blobValue(std::vector<uint8_t> blob) { return code(6).little(blob.size(), 4).raw(blob); }
    SongBytes& longItem(uint32_t tag, uint32_t value) { return code(tag).longValue(value).end(); }
    SongBytes& doubleItem(uint32_t tag, double value) { return code(tag).doubleValue(value).end(); }
    SongBytes& stringItem(uint32_t tag, std::u16string_view text) { return code(tag).stringValue(text).end(); }
    // A step of a pattern row: index, rate, volume and parameter as the writer writes them.
    SongBytes& step(uint32_t index, float rate, float volume, int32_t parameter)
    {
        code(16).longValue(index).doubleItem(22, rate).doubleItem(8, volume);
        return longItem(25, static_cast<uint32_t>(parameter)).end();
    }
    SongBytes& raw(const std::vector<uint8_t>& more)
    {
        bytes.insert(bytes.end(), more.begin(), more.end());
        return *this;
    }
    SongBytes& little(uint64_t value, int count) { test::appendLe(bytes, value, count); return *this; }

    std::vector<uint8_t> bytes;
};

// Sets every setting of `song` away from its default and shows it in another order: display
// position p shows instrument slot 39 - p and pattern (p + 10) % 40.
inline void arrangeSong(Song& song)
{
    SongPlayer& player = song.player();
    player.setTempo(97.5f);
    player.setVolume(0.45f);
    song.setStepsPerPattern(48);
    song.setBeatsPerPattern(5);
    std::reverse(song.instrumentOrder().begin(), song.instrumentOrder().end());
    std::rotate(song.patternOrder().begin(), song.patternOrder().begin() + 10, song.patternOrder().end());
    song.instrument(39).setName(u"kick");
    song.instrument(39).setVolume(0.9f);
    song.instrument(0).setName(u"far away");
    player.setPatternName(10, u"intro");
    player.setPatternName(9, u"outro");
    player.pattern(10).setCell(39, 0, { 0.5f, 2.0f, 3 });
    player.pattern(10).setCell(0, 63, { 1.0f, 0.25f, -7 });
    player.pattern(9).setCell(20, 47, { 0.0f, 1.0f, 256 });
    player.playlist().set(10, 0, 1.0f);
    player.playlist().set(10, 200, 1.0f);
    player.playlist().set(9, 255, 1.0f);
    player.setLoopStart(2);
    player.setLoopEnd(200);
    song.setEditorShown(1);
    song.view(0) = { 3, { 4, 5 } };
    song.view(1) = { -1, { 7, -8 } };
}

// For death tests: installs itself and prints the source and line of a report beside its
// message, so that the expected output names the exact place.
class LinePrintingPresenter : public ErrorPresenter {
public:
    LinePrintingPresenter() { setErrorPresenter(this); }
    void present(const ErrorReport& report) override
    {
        std::fprintf(stderr, "%s %s:%d %s\n", toUtf8(report.caption()).c_str(), report.source ? report.source : "",
            report.line, toUtf8(report.message).c_str());
    }
};

} // namespace pulsara::testing
