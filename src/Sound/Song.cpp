#include "Sound/Song.h"

#include <numeric>

namespace pulsara {

Song::Song(AudioFormat format)
    : format_(format)
{
    for (uint32_t slot = 0; slot < kInstruments; ++slot) {
        instruments_[slot].sample().setFormat(&format_);
        player_.setInstrument(slot, &instruments_[slot]);
    }
    player_.setFormat(&format_);
    player_.setTempo(kStartTempo);
    player_.setVolume(kStartVolume);
    reset();
}

void Song::reset()
{
    setStepsPerPattern(kDefaultStepsPerPattern);
    setBeatsPerPattern(kDefaultBeatsPerPattern);
    for (Instrument& instrument : instruments_)
        instrument.reset();
    player_.clearSong();
    std::iota(instrumentOrder_.begin(), instrumentOrder_.end(), 0);
    std::iota(patternOrder_.begin(), patternOrder_.end(), 0);
    views_ = {};
    editorShown_ = 0;
}

void Song::setFormat(AudioFormat format)
{
    format_ = format;
    player_.setFormat(&format_);
    for (Instrument& instrument : instruments_)
        instrument.sample().setFormat(&format_);
}

std::size_t Song::reclaimSamples()
{
    std::size_t waiting = 0;
    for (Instrument& instrument : instruments_)
        waiting += instrument.sample().reclaim();
    return waiting;
}

void Song::setInterpolation(Interpolation method)
{
    for (Instrument& instrument : instruments_)
        instrument.sample().setInterpolation(method);
}

} // namespace pulsara
