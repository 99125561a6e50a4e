#pragma once

#include "Sound/AudioFormat.h"
#include "Sound/SampleData.h"
#include "base/text.h"

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace pulsara {

enum class Interpolation : uint32_t { None = 0, Linear = 1 };

// One instrument's sound: a WAV file converted at load time to the output's rate and channel
// count as float frames, and the state of playing it (position, volume, rate). Mixing adds it
// into a float buffer at its rate with the nearest or the linear method.
//
// Threads. The GUI thread owns the file side: the format pointer, path, display name, the
// source format and the sample data. The device's callback thread owns the playback position
// while the stream runs (any one thread while it is stopped, as for the export). Playing,
// volume, rate and interpolation are single atomic words.
//
// The data (frames, length, channel count) is handed over whole: a load builds a new
// SampleData on the GUI thread and publishes it with an atomic pointer swap. Every mix marks
// itself in and out of the data with an atomic counter; the replaced data is freed at once when
// no mix is under way, and otherwise kept until a later reclaim() finds none running, so that a
// mix never reads freed frames. A note remembers the data it started on and stops at its next
// mix when that data has been replaced, rather than go on in frames it did not start on.
class Sample {
public:
    Sample() = default;
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    // GUI thread. Stores the (shared, not owned) output format; a sample that has a file path is
    // loaded again from it for the new format.
    void setFormat(const AudioFormat*);
    const AudioFormat* format() const { return format_; }

    // Device callback thread: no allocation, locks, I/O or logging.
    // Adds `frames` output frames of `channels` channels into `out` when playing. Returns -1 when
    // it was playing (handled), 0 otherwise. Clears the playing flag when the data runs out or
    // was replaced since the note started. At rate 1.0 the frames are copied; otherwise they are
    // resampled with the nearest or the linear method. `channels` must be the sample's own
    // channel count (an output of another count stops the sample unmixed), and more than 2 is
    // fatal when resampling.
    int mix(float* out, uint32_t frames, uint32_t channels);
    // Clears `out`, then mixes into it.
    int render(float* out, uint32_t frames, uint32_t channels);

    // Length in output frames (source frames divided by the rate, truncated). GUI thread.
    uint32_t lengthInOutputFrames() const;
    // Position in output frames. The thread that mixes.
    uint32_t positionInOutputFrames() const;
    // The thread that mixes: moves to output frame x (source frame x * rate). Beyond the end the
    // position becomes 0 and the result is -1; otherwise the new position in source frames.
    int64_t seek(uint32_t outputFrame);

    float volume() const { return volume_.load(std::memory_order_relaxed); }
    void setVolume(float volume) { volume_.store(volume, std::memory_order_relaxed); }
    float rate() const { return rate_.load(std::memory_order_relaxed); }
    void setRate(float rate) { rate_.store(rate, std::memory_order_relaxed); }
    Interpolation interpolation() const { return interpolation_.load(std::memory_order_relaxed); }
    void setInterpolation(Interpolation method) { interpolation_.store(method, std::memory_order_relaxed); }

    bool isPlaying() const { return playing_.load(std::memory_order_relaxed); }
    // The thread that mixes. Playing starts a note: it plays the data that its first mix finds.
    void setPlaying(bool playing)
    {
        if (playing)
            noteSerial_ = kNoNote;
        playing_.store(playing, std::memory_order_relaxed);
    }
    // The thread that mixes: source frames from the start of the data; the integer part is the
    // current frame.
    double position() const { return position_; }
    void setPosition(double position) { position_ = position; }

    // GUI thread. Loads a WAV file, converting it to the output format (see WavReader). Returns 1
    // after a load that needed no conversion, 0 otherwise, even after a good converting load:
    // ask isLoaded() for success.
    int load(std::u16string_view path);
    // GUI thread. Empties the sample: no path, no name, no frames, length 0; a sounding note
    // stops at its next mix, and its position goes back to 0 there.
    void unload();
    bool isLoaded() const { return !path_.empty(); }

    // GUI thread. Replaces the frames (interleaved, 1 or 2 channels, at the output's channel
    // count) without a file, as the reader does after converting; keeps one silent spare frame
    // after the data. Returns false (after the out-of-memory report, with the sample empty)
    // when the spare frame cannot be added.
    bool setFrames(std::vector<float> interleaved, uint32_t channels);

    // GUI thread. Frees the data that loads have replaced, once no mix can still be reading it.
    // Returns the number of replaced blocks still waiting (a mix was under way). The window
    // calls it from a timer; loads free what they replace themselves when no mix is under way.
    std::size_t reclaim();

    const PathString& path() const { return path_; }
    const std::u16string& displayName() const { return displayName_; }
    // The current data, as the GUI thread last published it. GUI thread only: the audio thread
    // reads the data inside mix.
    int32_t length() const { return data_ ? data_->length : 0; } // source frames
    uint32_t channels() const { return data_ ? data_->channels : 1; }
    const float* frames() const { return data_ ? data_->frames.data() : nullptr; }

    // The file's own format, kept after loading.
    uint32_t sourceRate() const { return sourceRate_; }
    uint32_t sourceChannels() const { return sourceChannels_; }
    uint32_t sourceBits() const { return sourceBits_; }

private:
    friend class WavReader;
    class DataReader;

    // GUI thread: makes `data` (nullptr for none) what the next mix reads, and frees the data it
    // replaces as soon as no mix can be reading it.
    void publish(std::unique_ptr<SampleData>);

    // Device callback thread: no allocation, locks, I/O or logging.
    void mixDirect(const SampleData&, float* out, uint32_t frames, uint32_t channels, float volume);
    void mixResampled(const SampleData&, float* out, uint32_t frames, uint32_t channels, float rate, float volume);

    static constexpr uint64_t kNoNote = 0;

    // Atomic words: written by either thread.
    std::atomic<bool> playing_ { false };
    std::atomic<float> volume_ { 1.0f };
    std::atomic<float> rate_ { 1.0f };
    std::atomic<Interpolation> interpolation_ { Interpolation::None };

    // The hand-over: what mixes read, and how many mixes are reading it now.
    std::atomic<const SampleData*> published_ { nullptr };
    std::atomic<uint32_t> readers_ { 0 };

    // Device callback thread (the thread that mixes).
    double position_ = 0.0;
    uint64_t noteSerial_ = kNoNote; // the serial of the data the sounding note started on

    // GUI thread.
    const AudioFormat* format_ = nullptr;
    std::unique_ptr<SampleData> data_; // what `published_` points at
    std::vector<std::unique_ptr<SampleData>> retired_; // replaced while a mix was under way
    uint64_t lastSerial_ = kNoNote;
    PathString path_;
    std::u16string displayName_;
    uint32_t sourceRate_ = 0;
    uint32_t sourceChannels_ = 0;
    uint32_t sourceBits_ = 0;
};

} // namespace pulsara
