#pragma once

#include "Sound/AudioFormat.h"
#include "base/text.h"

#include <atomic>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace pulsara {

enum class Interpolation : uint32_t { None = 0, Linear = 1 };

// One instrument's sound: a WAV file converted at load time to the output's rate and channel
// count as float frames, and the state of playing it (position, volume, rate). Mixing adds it
// into a float buffer at its rate with the nearest or the linear method.
//
// The playback state belongs to the audio thread while the stream runs; loading and format
// changes happen while it is stopped. Volume, rate and interpolation are single atomic words
// that the GUI thread may set between blocks.
class Sample {
public:
    Sample() = default;
    Sample(const Sample&) = delete;
    Sample& operator=(const Sample&) = delete;

    // Stores the (shared, not owned) output format; a sample that has a file path is loaded
    // again from it for the new format.
    void setFormat(const AudioFormat*);
    const AudioFormat* format() const { return format_; }

    // Device callback thread: no allocation, locks, I/O or logging.
    // Adds `frames` output frames of `channels` channels into `out` when playing. Returns -1 when
    // it was playing (handled), 0 otherwise. Clears the playing flag when the data runs out.
    // At rate 1.0 the frames are copied; otherwise they are resampled with the nearest or the
    // linear method. `channels` must be the sample's own channel count (an output of another
    // count stops the sample unmixed), and more than 2 is fatal when resampling.
    int mix(float* out, uint32_t frames, uint32_t channels);
    // Clears `out`, then mixes into it.
    int render(float* out, uint32_t frames, uint32_t channels);

    // Length and position in output frames (source frames divided by the rate, truncated).
    uint32_t lengthInOutputFrames() const;
    uint32_t positionInOutputFrames() const;
    // Moves to output frame x (source frame x * rate). Beyond the end the position becomes 0 and
    // the result is -1; otherwise the new position in source frames.
    int64_t seek(uint32_t outputFrame);

    float volume() const { return volume_.load(std::memory_order_relaxed); }
    void setVolume(float volume) { volume_.store(volume, std::memory_order_relaxed); }
    float rate() const { return rate_.load(std::memory_order_relaxed); }
    void setRate(float rate) { rate_.store(rate, std::memory_order_relaxed); }
    Interpolation interpolation() const { return interpolation_.load(std::memory_order_relaxed); }
    void setInterpolation(Interpolation method) { interpolation_.store(method, std::memory_order_relaxed); }

    bool isPlaying() const { return playing_.load(std::memory_order_relaxed); }
    void setPlaying(bool playing) { playing_.store(playing, std::memory_order_relaxed); }
    // Source frames from the start of the data; the integer part is the current frame.
    double position() const { return position_; }
    void setPosition(double position) { position_ = position; }

    // Loads a WAV file, converting it to the output format (see WavReader). Returns 1 after a
    // load that needed no conversion, 0 otherwise, even after a good converting load: ask
    // isLoaded() for success.
    int load(std::u16string_view path);
    // Empties the sample: no path, no name, no frames, position and length 0.
    void unload();
    bool isLoaded() const { return !path_.empty(); }

    // Replaces the frames (interleaved, 1 or 2 channels, at the output's channel count) without a
    // file, as the reader does after converting; keeps one silent spare frame after the data.
    // Returns false (after the out-of-memory report) when the spare frame cannot be added.
    bool setFrames(std::vector<float> interleaved, uint32_t channels);

    const PathString& path() const { return path_; }
    const std::u16string& displayName() const { return displayName_; }
    int32_t length() const { return length_; } // source frames
    uint32_t channels() const { return channels_; }
    const float* frames() const { return frames_.data(); }

    // The file's own format, kept after loading.
    uint32_t sourceRate() const { return sourceRate_; }
    uint32_t sourceChannels() const { return sourceChannels_; }
    uint32_t sourceBits() const { return sourceBits_; }

private:
    friend class WavReader;

    // Device callback thread: no allocation, locks, I/O or logging.
    void mixDirect(float* out, uint32_t frames, uint32_t channels, float volume);
    void mixResampled(float* out, uint32_t frames, uint32_t channels, float rate, float volume);

    std::atomic<bool> playing_ { false };
    const AudioFormat* format_ = nullptr;
    // Interleaved; always one silent frame longer than `length_` frames, because the linear
    // method reads one frame past the last one it interpolates from.
    std::vector<float> frames_;
    uint32_t channels_ = 1;
    double position_ = 0.0;
    int32_t length_ = 0;
    std::atomic<float> volume_ { 1.0f };
    std::atomic<float> rate_ { 1.0f };
    std::atomic<Interpolation> interpolation_ { Interpolation::None };

    PathString path_;
    std::u16string displayName_;
    uint32_t sourceRate_ = 0;
    uint32_t sourceChannels_ = 0;
    uint32_t sourceBits_ = 0;
};

} // namespace pulsara
