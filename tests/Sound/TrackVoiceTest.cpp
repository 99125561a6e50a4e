#include "Sound/Instrument.h"
#include "Sound/TrackVoice.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace pulsara;

namespace {

// A voice on a mono sample whose frame i holds the value i, so that the output names the
// source position it was mixed from.
struct VoiceRig {
    AudioFormat format { 44100, 32, 1 };
    Instrument instrument;
    TrackVoice voice;
    std::vector<float> out;

    explicit VoiceRig(std::size_t frames)
    {
        std::vector<float> values(frames);
        std::iota(values.begin(), values.end(), 0.0f);
        instrument.sample().setFormat(&format);
        instrument.sample().setFrames(std::move(values), 1);
        instrument.setVolume(1.0f);
        voice.setInstrument(&instrument);
    }
    // Plays one block of `frames` frames after those already played, with triggers at offsets.
    void play(uint32_t frames, double framesPerStep, std::vector<std::pair<uint32_t, Step>> triggers = {})
    {
        out.resize(out.size() + frames);
        voice.beginBlock(out.data() + out.size() - frames, frames, 1, framesPerStep);
        for (auto [offset, step] : triggers)
            voice.trigger(offset, step);
        voice.endBlock();
    }
};

} // namespace

// A note with a length parameter stops by itself parameter * framesPerStep / 256 frames after
// its start, to the frame, even when that falls in a later block.
TEST(TrackVoice, NoteLengthEndsTheNoteToTheFrame)
{
    VoiceRig rig(10000);
    rig.play(64, 100.5, { { 10, { 1.0f, 1.0f, 384 } } }); // one and a half steps: 150 frames
    rig.play(64, 100.5);
    rig.play(64, 100.5);
    for (std::size_t i = 0; i < rig.out.size(); ++i)
        EXPECT_EQ(rig.out[i], i >= 10 && i < 160 ? static_cast<float>(i - 10) : 0.0f) << "frame " << i;
    EXPECT_FALSE(rig.instrument.sample().isPlaying());
}

// A trigger cuts the sounding note at its frame and restarts the sample from its beginning
// with the new volume and rate. (That a cut silences at once shows in a stopped player.)
TEST(TrackVoice, TriggerRestartsTheSample)
{
    VoiceRig rig(1000);
    rig.instrument.setVolume(0.5f);
    rig.play(200, 50.0, { { 0, { 1.0f, 1.0f, 0 } }, { 120, { 0.25f, 1.0f, 0 } } });
    EXPECT_EQ(rig.out[119], 119 * 0.5f);
    EXPECT_EQ(rig.out[120], 0.0f);
    EXPECT_EQ(rig.out[199], 79 * 0.125f);
}

// Each stretch between events is one call of the linear method, which steps once more than it
// mixed: the second block goes on from 2.5, not 2. The trigger restarts at rate 1.
TEST(TrackVoice, MixesTheBlockStretchByStretch)
{
    VoiceRig rig(100);
    rig.instrument.sample().setInterpolation(Interpolation::Linear);
    rig.play(4, 100.0, { { 0, { 1.0f, 0.5f, 0 } } });
    rig.play(4, 100.0, { { 2, { 1.0f, 1.0f, 0 } } });
    EXPECT_EQ(rig.out, (std::vector<float> { 0, 0.5f, 1, 1.5f, 2.5f, 3, 0, 1 }));
}
