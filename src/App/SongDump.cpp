#include "App/SongDump.h"

#include "Sound/Song.h"
#include "base/text.h"

#include <cstdio>

namespace pulsara {

namespace {

class JsonWriter {
public:
    std::string text;

    void number(double value)
    {
        char buffer[32];
        std::snprintf(buffer, sizeof buffer, "%.9g", value);
        text += buffer;
    }
    void integer(long long value) { text += std::to_string(value); }
    void string(std::u16string_view value)
    {
        text += '"';
        for (unsigned char c : toUtf8(value)) {
            if (c == '"' || c == '\\') {
                text += '\\';
                text += static_cast<char>(c);
            } else if (c < 0x20) {
                char buffer[8];
                std::snprintf(buffer, sizeof buffer, "\\u%04x", c);
                text += buffer;
            } else {
                text += static_cast<char>(c);
            }
        }
        text += '"';
    }
    void key(const char* name)
    {
        text += '"';
        text += name;
        text += "\": ";
    }
    void separator(bool& first)
    {
        if (!first)
            text += ", ";
        first = false;
    }
};

void writeInstruments(JsonWriter& json, const Song& song)
{
    json.text += '[';
    for (uint32_t slot = 0; slot < Song::kInstruments; ++slot) {
        const Instrument& instrument = song.instrument(slot);
        json.text += slot ? ", {" : "{";
        json.key("slot");
        json.integer(slot);
        json.text += ", ";
        json.key("name");
        json.string(instrument.name());
        json.text += ", ";
        json.key("path");
        json.string(instrument.sample().path().view());
        json.text += ", ";
        json.key("volume");
        json.number(instrument.volume());
        json.text += ", ";
        json.key("frames");
        json.integer(instrument.sample().length());
        json.text += '}';
    }
    json.text += ']';
}

void writePatterns(JsonWriter& json, const Song& song)
{
    const SongPlayer& player = song.player();
    json.text += '[';
    for (uint32_t slot = 0; slot < Song::kPatterns; ++slot) {
        json.text += slot ? ", {" : "{";
        json.key("slot");
        json.integer(slot);
        json.text += ", ";
        json.key("name");
        json.string(player.patternName(slot));
        json.text += ", ";
        json.key("positions");
        json.text += '[';
        bool first = true;
        for (uint32_t column = 0; column < Song::kPositions; ++column) {
            if (player.playlist().isOn(slot, column)) {
                json.separator(first);
                json.integer(column);
            }
        }
        json.text += "], ";
        json.key("notes");
        json.text += '[';
        first = true;
        const StepGrid& pattern = player.pattern(slot);
        for (uint32_t row = 0; row < pattern.rows(); ++row) {
            for (uint32_t step = 0; step < StepGrid::kCellsPerRow; ++step) {
                Step cell = pattern.cell(row, step);
                if (!cell.isNote())
                    continue;
                json.separator(first);
                json.text += "{\"row\": ";
                json.integer(row);
                json.text += ", \"step\": ";
                json.integer(step);
                json.text += ", \"volume\": ";
                json.number(cell.volume);
                json.text += ", \"rate\": ";
                json.number(cell.rate);
                json.text += ", \"param\": ";
                json.integer(cell.parameter);
                json.text += '}';
            }
        }
        json.text += "]}";
    }
    json.text += ']';
}

} // namespace

std::string dumpSongJson(const Song& song)
{
    const SongPlayer& player = song.player();
    JsonWriter json;
    json.text += '{';
    json.key("tempo");
    json.number(player.tempo());
    json.text += ", ";
    json.key("volume");
    json.number(player.volume());
    json.text += ", ";
    json.key("stepsPerPattern");
    json.integer(song.stepsPerPattern());
    json.text += ", ";
    json.key("beatsPerPattern");
    json.integer(song.beatsPerPattern());
    json.text += ", ";
    json.key("loopStart");
    json.integer(player.loopStart());
    json.text += ", ";
    json.key("loopEnd");
    json.integer(player.loopEnd());
    json.text += ", ";
    json.key("editorShown");
    json.integer(song.editorShown());
    json.text += ", ";
    json.key("lastUsedPosition");
    json.integer(player.playlist().lastUsedPosition());
    json.text += ", ";
    json.key("views");
    json.text += '[';
    for (uint32_t editor = 0; editor < 2; ++editor) {
        const EditorViewState& view = song.view(editor);
        json.text += editor ? ", {" : "{";
        json.key("value");
        json.integer(view.value);
        json.text += ", ";
        json.key("pair");
        json.text += '[';
        json.integer(view.pair[0]);
        json.text += ", ";
        json.integer(view.pair[1]);
        json.text += "]}";
    }
    json.text += "], ";
    json.key("instruments");
    writeInstruments(json, song);
    json.text += ", ";
    json.key("patterns");
    writePatterns(json, song);
    json.text += "}\n";
    return json.text;
}

} // namespace pulsara
