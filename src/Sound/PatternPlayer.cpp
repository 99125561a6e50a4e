#include "Sound/PatternPlayer.h"

#include "Sound/Instrument.h"
#include "Sound/RowWorkers.h"
#include "base/ErrorReporter.h"

#include <algorithm>
#include <chrono>
#include <cmath>
#include <vector>

namespace pulsara {

namespace {

constexpr const char* kSource = "Sound/Pattern";
constexpr int kNoFormatLine = 139;
constexpr float kMinutesPerSecond = 0.016666668f;

uint64_t stepStart(uint32_t step, double framesPerStep)
{
    return static_cast<uint64_t>(step * framesPerStep);
}

uint64_t passFrames(uint32_t length, double framesPerStep)
{
    return static_cast<uint64_t>(length * framesPerStep);
}

// The first step that starts at or after `frame` of the pass.
uint32_t firstStepFrom(uint64_t frame, double framesPerStep)
{
    double estimate = std::floor(static_cast<double>(frame) / framesPerStep);
    auto step = estimate > 0.0 ? static_cast<uint32_t>(std::min(estimate, 4294967295.0)) : 0u;
    while (step > 0 && stepStart(step - 1, framesPerStep) >= frame)
        --step;
    while (stepStart(step, framesPerStep) < frame)
        ++step;
    return step;
}

int64_t nowMilliseconds()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(steady_clock::now().time_since_epoch()).count();
}

} // namespace

// One block's rows for the helper threads: the triggers of every row, found by the thread that
// renders in row order before any row is mixed, so that the song moves on exactly as when each
// row is walked and mixed in turn (mixing never reads the grid or the song position).
class PatternPlayer::BlockRows final : public RowWorkers::Rows {
public:
    explicit BlockRows(PatternPlayer& player)
        : player_(player)
    {
    }

    void walk(const Block& block)
    {
        block_ = &block;
        for (uint32_t row = 0; row < kTracks; ++row) {
            std::vector<Trigger>& triggers = triggers_[row];
            triggers.clear();
            player_.walkTrack(row, block, [&](uint32_t offset, Step step) { triggers.push_back({ offset, step }); });
        }
    }

    bool sounds(uint32_t row) const override
    {
        const Instrument* instrument = player_.tracks_[row].instrument();
        return instrument && (!triggers_[row].empty() || instrument->sample().isPlaying());
    }

    void render(uint32_t row, float* out) override
    {
        TrackVoice& track = player_.tracks_[row];
        track.beginBlock(out, block_->frames, block_->channels, block_->framesPerStep);
        for (const Trigger& trigger : triggers_[row])
            track.trigger(trigger.offset, trigger.step);
        track.endBlock();
    }

private:
    struct Trigger {
        uint32_t offset;
        Step step;
    };

    PatternPlayer& player_;
    const Block* block_ = nullptr;
    std::array<std::vector<Trigger>, kTracks> triggers_;
};

PatternPlayer::PatternPlayer()
    : grid_(kTracks, 16)
{
}

PatternPlayer::~PatternPlayer() = default;

void PatternPlayer::setRenderThreads(uint32_t threads)
{
    uint32_t helpers = threads > 1 ? threads - 1 : 0;
    if (helpers == (workers_ ? workers_->helpers() : 0))
        return;
    workers_.reset();
    blockRows_.reset();
    if (helpers > 0) {
        workers_ = std::make_unique<RowWorkers>(helpers, kTracks);
        blockRows_ = std::make_unique<BlockRows>(*this);
    }
}

bool PatternPlayer::tracksShareAnInstrument() const
{
    for (uint32_t row = 0; row < kTracks; ++row) {
        for (uint32_t other = row + 1; other < kTracks; ++other) {
            if (tracks_[row].instrument() && tracks_[row].instrument() == tracks_[other].instrument())
                return true;
        }
    }
    return false;
}

void PatternPlayer::setInstrument(uint32_t track, Instrument* instrument)
{
    if (track < kTracks)
        tracks_[track].setInstrument(instrument);
}

void PatternPlayer::setTempo(float beatsPerMinute)
{
    // Written so that NaN also falls back to the minimum.
    if (!(beatsPerMinute >= kMinTempo))
        beatsPerMinute = kMinTempo;
    tempo_.store(beatsPerMinute, std::memory_order_relaxed);
    recomputeFramesPerStep();
}

void PatternPlayer::setBeatsPerPattern(uint32_t beats)
{
    beatsPerPattern_.store(beats, std::memory_order_relaxed);
    recomputeFramesPerStep();
}

void PatternPlayer::setLength(uint32_t steps)
{
    grid_.setLength(steps);
    recomputeFramesPerStep();
}

void PatternPlayer::setFormat(const AudioFormat* format)
{
    format_ = format;
    audition_.setFormat(format);
    recomputeFramesPerStep();
}

void PatternPlayer::recomputeFramesPerStep()
{
    if (!format_)
        return;
    float stepsPerMinute = static_cast<float>(length()) * tempo() * kMinutesPerSecond;
    float framesPerStep = static_cast<float>(format_->sampleRate) / (stepsPerMinute / static_cast<float>(beatsPerPattern()));
    // A zero length or beat count gives no usable step; such a grid simply never triggers.
    if (!std::isfinite(framesPerStep) || framesPerStep < 0.0f)
        framesPerStep = 0.0f;
    framesPerStep_.store(framesPerStep, std::memory_order_relaxed);
}

double PatternPlayer::framesPerStep() const
{
    if (!format_)
        reportError(&errorContext(), kFatal, kSource, kNoFormatLine, u"SS: no format defined");
    return framesPerStep_.load(std::memory_order_relaxed);
}

uint64_t PatternPlayer::framesPerPass() const
{
    return passFrames(length(), framesPerStep());
}

uint32_t PatternPlayer::currentStep() const
{
    uint32_t steps = length();
    if (steps == 0)
        return 0;
    if (isPlaying()) {
        double elapsed = static_cast<double>(nowMilliseconds() - startTick_.load(std::memory_order_relaxed));
        double passed = static_cast<double>(steps) * tempo() * elapsed / 60000.0 / beatsPerPattern();
        return static_cast<uint32_t>(startStep_.load(std::memory_order_relaxed) + static_cast<uint32_t>(passed)) % steps;
    }
    double perStep = framesPerStep_.load(std::memory_order_relaxed);
    if (perStep <= 0.0)
        return 0;
    return static_cast<uint32_t>(static_cast<double>(position()) / perStep) % steps;
}

void PatternPlayer::triggerLive(int32_t track)
{
    playLive(LiveSource::Gui, { track, -1.0f, 1.0f });
}

void PatternPlayer::playLive(LiveSource source, LiveNote note)
{
    soloTrack_.store(note.track, std::memory_order_relaxed);
    if (note.track >= 0 && note.track < int32_t(kTracks))
        liveNotes_[static_cast<size_t>(source)].push(note);
}

void PatternPlayer::seek(uint64_t frame)
{
    uint64_t pass = format_ ? framesPerPass() : 0;
    restartPassAt(pass > 0 ? frame % pass : 0);
}

void PatternPlayer::restartPassAt(uint64_t position)
{
    position_.store(position, std::memory_order_relaxed);
    renderedFramesPerStep_ = framesPerStep_.load(std::memory_order_relaxed);
    freshStart_.store(true, std::memory_order_relaxed);
}

void PatternPlayer::restartClockAt(uint32_t step)
{
    startStep_.store(step, std::memory_order_relaxed);
    startTick_.store(nowMilliseconds(), std::memory_order_relaxed);
}

void PatternPlayer::start()
{
    restartClockAt(currentStep());
    playing_.store(true, std::memory_order_release);
}

void PatternPlayer::stop()
{
    playing_.store(false, std::memory_order_release);
    cutRequested_.store(true, std::memory_order_release);
}

void PatternPlayer::render(float* out, uint32_t frames, uint32_t channels)
{
    std::fill(out, out + static_cast<std::size_t>(frames) * channels, 0.0f);
    if (frames == 0)
        return;
    if (cutRequested_.exchange(false, std::memory_order_acquire)) {
        for (TrackVoice& track : tracks_)
            track.cut();
    }

    Block block {};
    block.out = out;
    block.frames = frames;
    block.channels = channels;
    block.framesPerStep = framesPerStep_.load(std::memory_order_relaxed);
    block.length = length();
    block.framesPerPass = passFrames(block.length, block.framesPerStep);
    block.sequencing = isPlaying() && block.framesPerPass > 0;
    // A track played twice since the last block plays its latest note.
    for (LiveNoteRing& ring : liveNotes_)
        ring.drain([&](const LiveNote& note) { block.live[static_cast<size_t>(note.track)] = note; });

    uint64_t position = position_.load(std::memory_order_relaxed);
    if (block.sequencing) {
        // A new tempo, length or rate keeps playing at the same point of the pass.
        if (renderedFramesPerStep_ > 0.0 && renderedFramesPerStep_ != block.framesPerStep)
            position = static_cast<uint64_t>(static_cast<double>(position) * block.framesPerStep / renderedFramesPerStep_);
        renderedFramesPerStep_ = block.framesPerStep;
        position %= block.framesPerPass;
        block.position = position;
        block.firstStep = firstStepFrom(position, block.framesPerStep);
        block.wrapsAtStart = position == 0 && !freshStart_.exchange(false, std::memory_order_relaxed);
    }

    if (workers_ && !tracksShareAnInstrument()) {
        blockRows_->walk(block);
        workers_->render(*blockRows_, out, static_cast<std::size_t>(frames) * channels);
    } else {
        for (uint32_t row = 0; row < kTracks; ++row)
            renderTrack(row, block);
    }
    renderAudition(block);

    if (block.sequencing) {
        uint64_t end = position + frames;
        uint64_t innerWraps = (end - 1) / block.framesPerPass;
        uint64_t wraps = innerWraps + (block.wrapsAtStart ? 1 : 0);
        if (wraps > 0)
            advanceForRow(-1, static_cast<uint32_t>(wraps - 1));
        position_.store(end % block.framesPerPass, std::memory_order_relaxed);
    }
}

void PatternPlayer::renderAudition(const Block& block)
{
    if (auditionStop_.exchange(false, std::memory_order_acq_rel))
        audition_.setPlaying(false);
    if (auditionStart_.exchange(false, std::memory_order_acq_rel)) {
        audition_.setPosition(0.0);
        audition_.setRate(1.0f);
        audition_.setVolume(volume());
        audition_.setPlaying(true);
    }
    if (audition_.isPlaying())
        audition_.mix(block.out, block.frames, block.channels);
}

void PatternPlayer::renderTrack(uint32_t row, const Block& block)
{
    TrackVoice& track = tracks_[row];
    track.beginBlock(block.out, block.frames, block.channels, block.framesPerStep);
    walkTrack(row, block, [&](uint32_t offset, Step step) { track.trigger(offset, step); });
    track.endBlock();
}

template<typename Play>
void PatternPlayer::walkTrack(uint32_t row, const Block& block, Play&& play)
{
    if (const LiveNote& live = block.live[row]; live.track >= 0)
        play(0, { live.volume < 0.0f ? volume() : live.volume * volume(), live.rate, 0 });

    if (block.sequencing) {
        float masterVolume = volume();
        uint64_t end = block.position + block.frames;
        uint32_t wrap = 0;
        // Walk the pass segments the block covers: the rest of the current pass, then whole
        // passes, each starting at its step 0.
        for (uint64_t passStart = 0; passStart < end; passStart += block.framesPerPass) {
            uint64_t to = std::min(end - passStart, block.framesPerPass);
            if (passStart > 0 || block.wrapsAtStart)
                advanceForRow(static_cast<int32_t>(row), wrap++);
            for (uint32_t step = passStart == 0 ? block.firstStep : 0; step < block.length; ++step) {
                uint64_t start = stepStart(step, block.framesPerStep);
                if (start >= to)
                    break;
                Step cell = grid_.cell(row, step);
                if (!cell.isNote())
                    continue;
                cell.volume *= masterVolume;
                play(static_cast<uint32_t>(passStart + start - block.position), cell);
            }
        }
    }
}

} // namespace pulsara
