#include "Sound/Instrument.h"
#include "Sound/TrackVoice.h"

#include <gtest/gtest.h>

#include <numeric>

using namespace pulsara;

namespace {

struct VoiceRig {
    AudioFormat format { 44100, 32, 1 };
    Instrument instrument;
    TrackVoice voice;

    explicit VoiceRig(std::vector<float> frames)
    {
        instrument.sample().setFormat(&format);
        instrument.sample().setFrames(std::move(frames), 1);
        instrument.setVolume(1.0f);
        voice.setInstrument(&instrument);
    }
};

std::vector<float> ramp(std::size_t frames)
{
    std::vector<float> values(frames);
    for (std::size_t i = 0; i < frames; ++i)
        values[i] = static_cast<float>(i % 97) / 97.0f - 0.5f;
    return values;
}

} // namespace

// A note with a length parameter stops by itself parameter * framesPerStep / 256 frames after
// its start, to the frame, even when that falls in a later block.
TEST(TrackVoice, NoteLengthEndsTheNoteToTheFrame)
{
    VoiceRig rig(std::vector<float>(10000, 1.0f));
    const double framesPerStep = 100.5;
    std::vector<float> out(3 * 64);
    for (int block = 0; block < 3; ++block) {
        rig.voice.beginBlock(out.data() + 64 * block, 64, 1, framesPerStep);
        if (block == 0)
            rig.voice.trigger(10, { 1.0f, 1.0f, 384 }); // one and a half steps: 150 frames
        rig.voice.endBlock();
    }
    for (std::size_t i = 0; i < out.size(); ++i)
        EXPECT_EQ(out[i], i >= 10 && i < 160 ? 1.0f : 0.0f) << "frame " << i;
    EXPECT_FALSE(rig.instrument.sample().isPlaying());
}

// A trigger cuts the sounding note at its frame and restarts the sample from its beginning
// with the new volume and rate.
TEST(TrackVoice, TriggerCutsTheSoundingNoteAndRestartsTheSample)
{
    std::vector<float> frames = ramp(1000);
    VoiceRig rig(frames);
    rig.instrument.setVolume(0.5f);
    std::vector<float> out(200);
    rig.voice.beginBlock(out.data(), 200, 1, 50.0);
    rig.voice.trigger(0, { 1.0f, 1.0f, 0 });
    rig.voice.trigger(120, { 0.25f, 1.0f, 0 });
    rig.voice.endBlock();
    EXPECT_EQ(out[119], frames[119] * 0.5f);
    EXPECT_EQ(out[120], frames[0] * 0.125f);
    EXPECT_EQ(out[199], frames[79] * 0.125f);
}

// Each sounding stretch between events is one call of the sample's mix, so a voice's block
// equals mixing the same stretches by hand (the linear method's extra step included).
TEST(TrackVoice, BlockIsMixedStretchByStretch)
{
    std::vector<float> frames = ramp(5000);
    VoiceRig rig(frames);
    rig.instrument.sample().setInterpolation(Interpolation::Linear);
    std::vector<float> out(512);
    rig.voice.beginBlock(out.data(), 256, 1, 100.0);
    rig.voice.trigger(10, { 1.0f, 0.75f, 0 });
    rig.voice.endBlock();
    rig.voice.beginBlock(out.data() + 256, 256, 1, 100.0);
    rig.voice.trigger(100, { 1.0f, 1.5f, 0 });
    rig.voice.endBlock();

    Sample reference;
    AudioFormat format { 44100, 32, 1 };
    reference.setFormat(&format);
    reference.setFrames(frames, 1);
    reference.setInterpolation(Interpolation::Linear);
    std::vector<float> expected(512);
    reference.setVolume(1.0f);
    reference.setRate(0.75f);
    reference.setPosition(0.0);
    reference.setPlaying(true);
    reference.mix(expected.data() + 10, 246, 1);
    reference.mix(expected.data() + 256, 100, 1);
    reference.setRate(1.5f);
    reference.setPosition(0.0);
    reference.mix(expected.data() + 356, 156, 1);
    for (std::size_t i = 0; i < out.size(); ++i)
        ASSERT_EQ(out[i], expected[i]) << "frame " << i;
}

TEST(TrackVoice, CutSilencesAtOnce)
{
    VoiceRig rig(std::vector<float>(1000, 1.0f));
    std::vector<float> out(128);
    rig.voice.beginBlock(out.data(), 64, 1, 10.0);
    rig.voice.trigger(0, { 1.0f, 1.0f, 0 });
    rig.voice.endBlock();
    rig.voice.cut();
    rig.voice.beginBlock(out.data() + 64, 64, 1, 10.0);
    rig.voice.endBlock();
    EXPECT_EQ(std::accumulate(out.begin(), out.begin() + 64, 0.0f), 64.0f);
    EXPECT_EQ(std::accumulate(out.begin() + 64, out.end(), 0.0f), 0.0f);
}
