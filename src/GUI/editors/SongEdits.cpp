#include "GUI/editors/SongEdits.h"

#include "GUI/editors/SongEditCommand.h"
#include "Sound/Song.h"

#include <QUndoStack>

namespace pulsara {

namespace {

QString toQString(std::u16string_view text)
{
    return QString::fromUtf16(text.data(), static_cast<qsizetype>(text.size()));
}

} // namespace

SongEdits::SongEdits(Song& song)
    : song_(song)
    , history_(std::make_unique<QUndoStack>())
{
    QObject::connect(history_.get(), &QUndoStack::cleanChanged, [this](bool clean) {
        if (onCleanChanged)
            onCleanChanged(clean);
    });
}

SongEdits::~SongEdits()
{
    // A history going away with unsaved steps says it is clean again; nobody is left to tell.
    QObject::disconnect(history_.get(), nullptr, nullptr, nullptr);
}

void SongEdits::beginGesture(std::u16string_view name)
{
    endGesture();
    gesture_ = std::make_unique<SongEditCommand>(*this, toQString(name));
}

void SongEdits::endGesture()
{
    if (!gesture_)
        return;
    std::unique_ptr<SongEditCommand> step = std::move(gesture_);
    if (!step->isEmpty())
        history_->push(step.release());
}

void SongEdits::record(SongChange change, std::u16string_view defaultName)
{
    EditScope scope = applyChange(song_, change, true);
    if (gesture_) {
        gesture_->add(std::move(change));
    } else {
        auto step = std::make_unique<SongEditCommand>(*this, toQString(defaultName));
        step->add(std::move(change));
        if (!step->isEmpty())
            history_->push(step.release());
    }
    applied(scope, false);
}

void SongEdits::applied(EditScope scope, bool fromHistory)
{
    if (onApplied)
        onApplied(scope, fromHistory);
}

void SongEdits::setPatternCell(uint32_t pattern, uint32_t row, uint32_t step, Step value)
{
    Step before = song_.player().pattern(pattern).cell(row, step);
    record(CellChange { pattern, row, step, before, value }, u"Edit note");
}

void SongEdits::setPlaylistCell(uint32_t pattern, uint32_t position, bool on)
{
    bool before = song_.player().playlist().isOn(pattern, position);
    record(PlaylistChange { pattern, position, before, on }, on ? u"Place pattern" : u"Remove pattern");
}

void SongEdits::setTempo(float beatsPerMinute)
{
    record(ValueChange { ValueChange::Kind::Tempo, 0, song_.player().tempo(), beatsPerMinute }, u"Change tempo");
}

void SongEdits::setMasterVolume(float volume)
{
    record(ValueChange { ValueChange::Kind::MasterVolume, 0, song_.player().volume(), volume }, u"Change master volume");
}

void SongEdits::setInstrumentVolume(uint32_t slot, float volume)
{
    record(ValueChange { ValueChange::Kind::InstrumentVolume, slot, song_.instrument(slot).volume(), volume },
        u"Change instrument volume");
}

void SongEdits::setPatternLength(uint32_t beats, uint32_t steps)
{
    bool ownStep = !inGesture();
    if (ownStep)
        beginGesture(u"Change pattern length");
    record(ValueChange { ValueChange::Kind::BeatsPerPattern, 0, double(song_.beatsPerPattern()), double(beats) }, {});
    record(ValueChange { ValueChange::Kind::StepsPerPattern, 0, double(song_.stepsPerPattern()), double(steps) }, {});
    if (ownStep)
        endGesture();
}

void SongEdits::setLoop(int32_t start, int32_t end)
{
    bool ownStep = !inGesture();
    if (ownStep)
        beginGesture(u"Set loop");
    const SongPlayer& player = song_.player();
    record(ValueChange { ValueChange::Kind::LoopStart, 0, double(player.loopStart()), double(start) }, {});
    record(ValueChange { ValueChange::Kind::LoopEnd, 0, double(player.loopEnd()), double(end) }, {});
    if (ownStep)
        endGesture();
}

void SongEdits::renameInstrument(uint32_t slot, std::u16string_view name)
{
    record(NameChange { NameChange::Kind::Instrument, slot, song_.instrument(slot).name(),
               std::u16string(name.substr(0, Instrument::kMaxNameLength)) },
        u"Rename instrument");
}

void SongEdits::renamePattern(uint32_t pattern, std::u16string_view name)
{
    record(NameChange { NameChange::Kind::Pattern, pattern, song_.player().patternName(pattern),
               std::u16string(name.substr(0, SongPlayer::kMaxNameLength)) },
        u"Rename pattern");
}

void SongEdits::loadSample(uint32_t slot, std::u16string_view path)
{
    Instrument& instrument = song_.instrument(slot);
    SampleChange change { slot, std::u16string(instrument.sample().path().view()), {}, instrument.volume(), instrument.volume() };
    instrument.sample().load(path);
    // What the instrument holds now, which is nothing when the file could not be read.
    change.afterPath = std::u16string(instrument.sample().path().view());
    record(std::move(change), u"Open sample");
}

void SongEdits::clearInstrument(uint32_t slot)
{
    Instrument& instrument = song_.instrument(slot);
    record(SampleChange { slot, std::u16string(instrument.sample().path().view()), {}, instrument.volume(), Instrument::kDefaultVolume },
        u"Clear instrument");
}

void SongEdits::forgetHistory()
{
    gesture_.reset();
    history_->clear();
    history_->setClean();
}

void SongEdits::markSaved()
{
    history_->setClean();
}

void SongEdits::markUnsaved()
{
    history_->resetClean();
}

bool SongEdits::isClean() const
{
    return history_->isClean();
}

} // namespace pulsara
