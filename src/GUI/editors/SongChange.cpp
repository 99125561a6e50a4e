#include "GUI/editors/SongChange.h"

#include "Sound/Song.h"

namespace pulsara {

namespace {

template<typename Change>
auto valueOf(const Change& change, bool forward)
{
    return forward ? change.after : change.before;
}

EditScope apply(Song& song, const CellChange& change, bool forward)
{
    song.player().pattern(change.pattern).setCell(change.row, change.step, valueOf(change, forward));
    song.player().markGridChanged();
    return kScopeNotes;
}

EditScope apply(Song& song, const PlaylistChange& change, bool forward)
{
    song.player().playlist().set(change.pattern, change.position, valueOf(change, forward) ? 1.0f : 0.0f);
    song.player().markGridChanged();
    return kScopePlaylist;
}

EditScope apply(Song& song, const ValueChange& change, bool forward)
{
    double value = valueOf(change, forward);
    SongPlayer& player = song.player();
    switch (change.kind) {
    case ValueChange::Kind::Tempo:
        player.setTempo(static_cast<float>(value));
        return kScopeTempo;
    case ValueChange::Kind::MasterVolume:
        player.setVolume(static_cast<float>(value));
        return kScopeMasterVolume;
    case ValueChange::Kind::InstrumentVolume:
        song.instrument(change.index).setVolume(static_cast<float>(value));
        return kScopeInstruments;
    case ValueChange::Kind::BeatsPerPattern:
        song.setBeatsPerPattern(static_cast<uint32_t>(value));
        return kScopePatternLength;
    case ValueChange::Kind::StepsPerPattern:
        song.setStepsPerPattern(static_cast<uint32_t>(value));
        return kScopePatternLength;
    case ValueChange::Kind::LoopStart:
        player.setLoopStart(static_cast<int32_t>(value));
        return kScopeLoop;
    case ValueChange::Kind::LoopEnd:
        player.setLoopEnd(static_cast<int32_t>(value));
        return kScopeLoop;
    }
    return kScopeNotes;
}

EditScope apply(Song& song, const NameChange& change, bool forward)
{
    const std::u16string& name = valueOf(change, forward);
    if (change.kind == NameChange::Kind::Instrument) {
        song.instrument(change.index).setName(name);
        return kScopeInstruments;
    }
    song.player().setPatternName(change.index, name);
    return kScopePatternNames;
}

EditScope apply(Song& song, const SampleChange& change, bool forward)
{
    Instrument& instrument = song.instrument(change.slot);
    const std::u16string& path = forward ? change.afterPath : change.beforePath;
    if (path.empty())
        instrument.sample().unload();
    else if (std::u16string_view(instrument.sample().path().view()) != path)
        instrument.sample().load(path);
    instrument.setVolume(forward ? change.afterVolume : change.beforeVolume);
    return kScopeInstruments;
}

bool sameTarget(const CellChange& a, const CellChange& b)
{
    return a.pattern == b.pattern && a.row == b.row && a.step == b.step;
}

bool sameTarget(const PlaylistChange& a, const PlaylistChange& b)
{
    return a.pattern == b.pattern && a.position == b.position;
}

bool sameTarget(const ValueChange& a, const ValueChange& b)
{
    return a.kind == b.kind && a.index == b.index;
}

bool sameTarget(const NameChange& a, const NameChange& b)
{
    return a.kind == b.kind && a.index == b.index;
}

bool sameTarget(const SampleChange& a, const SampleChange& b)
{
    return a.slot == b.slot;
}

} // namespace

EditScope applyChange(Song& song, const SongChange& change, bool forward)
{
    return std::visit([&](const auto& kind) { return apply(song, kind, forward); }, change);
}

bool absorbChange(SongChange& earlier, const SongChange& later)
{
    if (earlier.index() != later.index())
        return false;
    return std::visit(
        [&](auto& first) {
            using Kind = std::decay_t<decltype(first)>;
            const Kind& second = std::get<Kind>(later);
            if (!sameTarget(first, second))
                return false;
            // Sample changes keep their own volumes together with their paths.
            if constexpr (std::is_same_v<Kind, SampleChange>) {
                first.afterPath = second.afterPath;
                first.afterVolume = second.afterVolume;
            } else {
                first.after = second.after;
            }
            return true;
        },
        earlier);
}

bool changesNothing(const SongChange& change)
{
    return std::visit(
        [](const auto& kind) {
            if constexpr (std::is_same_v<std::decay_t<decltype(kind)>, SampleChange>)
                return kind.beforePath == kind.afterPath && kind.beforeVolume == kind.afterVolume;
            else
                return kind.before == kind.after;
        },
        change);
}

} // namespace pulsara
