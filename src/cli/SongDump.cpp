#include "cli/SongDump.h"

#include "Sound/Song.h"
#include "base/text.h"

#include <cstdio>
#include <vector>

namespace pulsara {

namespace {

// Writes JSON with the separators put in by itself: ", " between members and elements.
class JsonWriter {
public:
    const std::string& text() const { return text_; }

    void beginObject() { open('{'); }
    void endObject() { close('}'); }
    void beginArray() { open('['); }
    void endArray() { close(']'); }

    JsonWriter& key(const char* name)
    {
        separate();
        text_ += '"';
        text_ += name;
        text_ += "\": ";
        keyed_ = true;
        return *this;
    }
    void value(double number)
    {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%.9g", number);
        raw(buffer);
    }
    void value(long long number) { raw(std::to_string(number)); }
    void value(std::u16string_view string)
    {
        std::string quoted = "\"";
        for (unsigned char c : toUtf8(string)) {
            if (c == '"' || c == '\\') {
                quoted += '\\';
                quoted += static_cast<char>(c);
            } else if (c < 0x20) {
                char buffer[8];
                std::snprintf(buffer, sizeof buffer, "\\u%04x", c);
                quoted += buffer;
            } else {
                quoted += static_cast<char>(c);
            }
        }
        raw(quoted + '"');
    }

private:
    void separate()
    {
        if (keyed_) {
            keyed_ = false;
            return;
        }
        if (!first_.empty() && !first_.back())
            text_ += ", ";
        if (!first_.empty())
            first_.back() = false;
    }
    void raw(const std::string& text)
    {
        separate();
        text_ += text;
    }
    void open(char bracket)
    {
        separate();
        text_ += bracket;
        first_.push_back(true);
    }
    void close(char bracket)
    {
        text_ += bracket;
        first_.pop_back();
    }

    std::string text_;
    std::vector<bool> first_;
    bool keyed_ = false;
};

void writeInstrument(JsonWriter& json, const Instrument& instrument, uint32_t slot)
{
    json.beginObject();
    json.key("slot").value(static_cast<long long>(slot));
    json.key("name").value(instrument.name());
    json.key("path").value(instrument.sample().path().view());
    json.key("volume").value(instrument.volume());
    json.key("frames").value(static_cast<long long>(instrument.sample().length()));
    json.endObject();
}

void writePattern(JsonWriter& json, const SongPlayer& player, uint32_t slot)
{
    json.beginObject();
    json.key("slot").value(static_cast<long long>(slot));
    json.key("name").value(player.patternName(slot));
    json.key("positions").beginArray();
    for (uint32_t column = 0; column < Song::kPositions; ++column) {
        if (player.playlist().isOn(slot, column))
            json.value(static_cast<long long>(column));
    }
    json.endArray();
    json.key("notes").beginArray();
    const StepGrid& pattern = player.pattern(slot);
    for (uint32_t row = 0; row < pattern.rows(); ++row) {
        for (uint32_t step = 0; step < StepGrid::kCellsPerRow; ++step) {
            Step cell = pattern.cell(row, step);
            if (!cell.isNote())
                continue;
            json.beginObject();
            json.key("row").value(static_cast<long long>(row));
            json.key("step").value(static_cast<long long>(step));
            json.key("volume").value(cell.volume);
            json.key("rate").value(cell.rate);
            json.key("param").value(static_cast<long long>(cell.parameter));
            json.endObject();
        }
    }
    json.endArray();
    json.endObject();
}

} // namespace

std::string dumpSongJson(const Song& song)
{
    const SongPlayer& player = song.player();
    JsonWriter json;
    json.beginObject();
    json.key("tempo").value(player.tempo());
    json.key("volume").value(player.volume());
    json.key("stepsPerPattern").value(static_cast<long long>(song.stepsPerPattern()));
    json.key("beatsPerPattern").value(static_cast<long long>(song.beatsPerPattern()));
    json.key("loopStart").value(static_cast<long long>(player.loopStart()));
    json.key("loopEnd").value(static_cast<long long>(player.loopEnd()));
    json.key("editorShown").value(static_cast<long long>(song.editorShown()));
    json.key("lastUsedPosition").value(static_cast<long long>(player.playlist().lastUsedPosition()));
    json.key("views").beginArray();
    for (uint32_t editor = 0; editor < 2; ++editor) {
        json.beginObject();
        json.key("value").value(static_cast<long long>(song.view(editor).value));
        json.key("pair").beginArray();
        json.value(static_cast<long long>(song.view(editor).pair[0]));
        json.value(static_cast<long long>(song.view(editor).pair[1]));
        json.endArray();
        json.endObject();
    }
    json.endArray();
    json.key("instruments").beginArray();
    for (uint32_t slot = 0; slot < Song::kInstruments; ++slot)
        writeInstrument(json, song.instrument(slot), slot);
    json.endArray();
    json.key("patterns").beginArray();
    for (uint32_t slot = 0; slot < Song::kPatterns; ++slot)
        writePattern(json, player, slot);
    json.endArray();
    json.endObject();
    return json.text() + '\n';
}

} // namespace pulsara
