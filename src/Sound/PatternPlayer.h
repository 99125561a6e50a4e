#pragma once

#include "Sound/LiveNoteRing.h"
#include "Sound/Sample.h"
#include "Sound/SoundSource.h"
#include "Sound/StepGrid.h"
#include "Sound/TrackVoice.h"

#include <array>
#include <atomic>
#include <cstdint>
#include <memory>

namespace pulsara {

class Instrument;
class RowWorkers;

// The step sequencer: plays the combined grid (one row per instrument) at the song's tempo,
// triggering each row's track voice at the exact frame each step starts.
//
// Step s of a pass starts at frame trunc(s * framesPerStep) of the pass; a pass lasts
// trunc(length * framesPerStep) frames. Every step is triggered exactly once, in the block that
// holds its start frame. When step 0 of a new pass is reached, each row is told through
// advanceForRow(row) just before its notes are read, and then advanceForRow(-1) once, so that
// the song player can move to the next position.
//
// Threads: the settings (tempo, volume, beats, length, live trigger, start and stop) are atomic
// words the GUI thread writes at any time. setFormat, setInstrument and seek are the GUI
// thread's while the stream is stopped. render, the track voices and the pass state
// (renderedFramesPerStep_, the pass position while playing) belong to the thread that renders:
// the device's callback thread while the stream runs. An export may have the rows mixed by
// helper threads (setRenderThreads): the thread that renders still walks the grid and moves the
// song on, and the helpers only mix the voices of the rows they are given, inside render().
class PatternPlayer : public SoundSource {
public:
    static constexpr uint32_t kTracks = 40;
    static constexpr float kDefaultTempo = 170.0f;
    static constexpr float kMinTempo = 1.0f;

    PatternPlayer();
    ~PatternPlayer() override;

    void setTempo(float beatsPerMinute);
    float tempo() const { return tempo_.load(std::memory_order_relaxed); }
    void setVolume(float volume) { volume_.store(volume, std::memory_order_relaxed); }
    float volume() const { return volume_.load(std::memory_order_relaxed); }
    void setBeatsPerPattern(uint32_t beats);
    uint32_t beatsPerPattern() const { return beatsPerPattern_.load(std::memory_order_relaxed); }
    // The pattern length in steps (the combined grid's length).
    virtual void setLength(uint32_t steps);
    uint32_t length() const { return grid_.length(); }

    void setInstrument(uint32_t track, Instrument*);
    StepGrid& grid() { return grid_; }
    const StepGrid& grid() const { return grid_; }

    // Frames per step at the output rate; the query is fatal while no format is set.
    double framesPerStep() const;
    // Frames of one pass over the grid.
    uint64_t framesPerPass() const;

    // The step under the play cursor: estimated from the clock while playing, else from the
    // position.
    uint32_t currentStep() const;
    // Frames already played inside the current pass.
    uint64_t position() const { return position_.load(std::memory_order_relaxed); }
    bool isPlaying() const { return playing_.load(std::memory_order_relaxed); }

    // Who plays live notes: each has a ring of its own (see LiveNoteRing).
    enum class LiveSource { Gui = 0, Midi = 1 };
    // Live play: the track's instrument is played from the start of the next rendered block,
    // whether or not the sequencer is running, at the master volume. -1 plays nothing. GUI thread.
    void triggerLive(int32_t track);
    // The same with a volume and a rate of its own, from the source's thread.
    void playLive(LiveSource, LiveNote);
    // A sample heard on its own, beside the tracks: a file selected in the sample dialog. Its
    // data is the GUI thread's to load; play and stop take effect at the next block.
    Sample& audition() { return audition_; }
    void playAudition() { audition_.setPlaying(false); auditionStart_.store(true, std::memory_order_release); }
    void stopAudition() { auditionStart_.store(false, std::memory_order_release); auditionStop_.store(true, std::memory_order_release); }
    int32_t soloTrack() const { return soloTrack_.load(std::memory_order_relaxed); }

    // SoundSource
    void setFormat(const AudioFormat*) override;
    const AudioFormat* format() const override { return format_; }
    // Device callback thread: no allocation, locks, I/O or logging.
    void render(float* out, uint32_t frames, uint32_t channels) override;
    uint64_t lengthInFrames() const override { return framesPerPass(); }
    // With no render running (the stream stopped): moves to frame `frame` of the pass, and the
    // next block starts playing there. While the stream runs, the song player's
    // requestSongPosition hands a move to the render instead.
    void seek(uint64_t frame) override;
    void start() override;
    void stop() override;
    // Two or more threads mix the rows of each block at once, with the same output as one (see
    // RowWorkers); not for the device's callback. Rows that share an instrument are always mixed
    // on the thread that renders.
    void setRenderThreads(uint32_t threads) override;

protected:
    // Called when `row` reaches the end of a pass, just before the row's first step of the new
    // pass is read, and with row -1 once all rows have. `wrap` counts the pass ends met inside
    // one block (almost always only 0: a block is seldom longer than a pass). Does nothing here;
    // the song player moves along its playlist.
    virtual void advanceForRow(int32_t row, uint32_t wrap) { }
    // The thread that renders: the pass goes on from frame `position` at the current frames per
    // step, and the next block counts as the start of playing, so that its step 0 is not a pass
    // wrap.
    void restartPassAt(uint64_t position);
    // GUI thread: the cursor's estimate counts on from `step` as of now.
    void restartClockAt(uint32_t step);

    void recomputeFramesPerStep();

private:
    struct Block {
        float* out;
        uint32_t frames;
        uint32_t channels;
        uint64_t position; // frames into the pass where the block starts
        uint32_t firstStep; // the first step that starts at or after `position`
        uint64_t framesPerPass;
        double framesPerStep;
        uint32_t length;
        bool sequencing;
        bool wrapsAtStart; // the block starts a new pass rather than the first one
        // The live note of each track for this block (track -1: none).
        std::array<LiveNote, kTracks> live;
    };
    class BlockRows;
    // Walks the row's steps in the block as its voice plays them: `play(offset, step)` for each
    // trigger in order, advancing the row at each pass end on the way.
    template<typename Play>
    void walkTrack(uint32_t row, const Block&, Play&&);
    void renderTrack(uint32_t row, const Block&);
    bool tracksShareAnInstrument() const;
    // Device callback thread: no allocation, locks, I/O or logging.
    void renderAudition(const Block&);

    const AudioFormat* format_ = nullptr;
    std::atomic<bool> playing_ { false };
    std::atomic<float> volume_ { 1.0f };
    std::atomic<float> tempo_ { kDefaultTempo };
    std::atomic<uint32_t> beatsPerPattern_ { 4 };
    std::atomic<double> framesPerStep_ { 0.0 };
    std::atomic<uint64_t> position_ { 0 };
    // The thread that renders: the frames per step the position was last rendered at; a change
    // rescales the position.
    double renderedFramesPerStep_ = 0.0;
    std::atomic<bool> freshStart_ { true };
    std::atomic<bool> cutRequested_ { false };
    std::atomic<int32_t> soloTrack_ { -1 };
    std::array<LiveNoteRing, 2> liveNotes_;
    Sample audition_;
    std::atomic<bool> auditionStart_ { false };
    std::atomic<bool> auditionStop_ { false };
    // Where playing began, for the cursor's estimate.
    std::atomic<uint32_t> startStep_ { 0 };
    std::atomic<int64_t> startTick_ { 0 };

    StepGrid grid_;
    std::array<TrackVoice, kTracks> tracks_;
    // Only while an export renders on several threads.
    std::unique_ptr<RowWorkers> workers_;
    std::unique_ptr<BlockRows> blockRows_;
};

} // namespace pulsara
