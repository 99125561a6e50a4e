#include "Sound/TrackVoice.h"

#include "Sound/Instrument.h"

namespace pulsara {

namespace {
// A step's parameter counts note length in 1/256 steps.
constexpr double kParameterUnitsPerStep = 256.0;
}

void TrackVoice::beginBlock(float* out, uint32_t frames, uint32_t channels, double framesPerStep)
{
    out_ = out;
    frames_ = frames;
    channels_ = channels;
    framesPerStep_ = framesPerStep;
    mixed_ = 0;
}

void TrackVoice::mixUntil(uint32_t frame)
{
    Sample& sample = instrument_->sample();
    if (noteEnd_ >= 0 && noteEnd_ <= frame) {
        auto end = static_cast<uint32_t>(noteEnd_);
        if (end > mixed_ && sample.isPlaying())
            sample.mix(out_ + static_cast<std::size_t>(mixed_) * channels_, end - mixed_, channels_);
        sample.setPlaying(false);
        noteEnd_ = -1;
        mixed_ = end > mixed_ ? end : mixed_;
    }
    if (frame > mixed_ && sample.isPlaying())
        sample.mix(out_ + static_cast<std::size_t>(mixed_) * channels_, frame - mixed_, channels_);
    mixed_ = frame;
}

void TrackVoice::trigger(uint32_t offset, Step step)
{
    if (!instrument_)
        return;
    mixUntil(offset);
    Sample& sample = instrument_->sample();
    sample.setPosition(0.0);
    sample.setVolume(step.volume * instrument_->volume());
    sample.setRate(step.rate);
    sample.setPlaying(true);
    noteEnd_ = -1;
    if (step.parameter > 0)
        noteEnd_ = offset + static_cast<int64_t>(step.parameter * framesPerStep_ / kParameterUnitsPerStep);
}

void TrackVoice::endBlock()
{
    if (!instrument_)
        return;
    mixUntil(frames_);
    if (noteEnd_ >= 0)
        noteEnd_ -= frames_;
}

void TrackVoice::cut()
{
    if (instrument_)
        instrument_->sample().setPlaying(false);
    noteEnd_ = -1;
}

} // namespace pulsara
