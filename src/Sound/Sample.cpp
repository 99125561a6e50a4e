#include "Sound/Sample.h"

#include "Sound/Resampler.h"
#include "Sound/WavReader.h"
#include "base/mem.h"

#include <algorithm>

namespace pulsara {

namespace {

// Truncates a non-negative count of frames; what cannot be one counts as 0 or as the most.
uint32_t truncateToFrames(double value)
{
    if (!(value > 0.0))
        return 0;
    if (value >= 4294967295.0)
        return UINT32_MAX;
    return static_cast<uint32_t>(value);
}

} // namespace

void Sample::setFormat(const AudioFormat* format)
{
    format_ = format;
    if (!path_.empty())
        load(path_.view());
}

int Sample::mix(float* out, uint32_t frames, uint32_t channels)
{
    if (!isPlaying())
        return 0;
    float rate = this->rate();
    float volume = this->volume();
    // A position before the data is no state mixing can start from.
    if (!(position_ >= 0.0)) {
        setPlaying(false);
        return -1;
    }
    if (rate == 1.0f)
        mixDirect(out, frames, channels, volume);
    else
        mixResampled(out, frames, channels, rate, volume);
    return -1;
}

void Sample::mixDirect(float* out, uint32_t frames, uint32_t channels, float volume)
{
    double remaining = length_ - position_;
    // The frames are laid out for the sample's own channel count; another count cannot be copied.
    if (!(remaining >= 0.0) || channels != channels_) {
        setPlaying(false);
        return;
    }
    uint64_t wanted = uint64_t { frames } * channels;
    uint64_t count = std::min(wanted, uint64_t { static_cast<uint32_t>(remaining) } * channels);
    auto start = static_cast<uint32_t>(position_);
    position_ += static_cast<double>(count / channels);
    mixCopy(out, frames_.data() + std::size_t { start } * channels, static_cast<uint32_t>(count), volume);
    if (count != wanted)
        setPlaying(false);
}

void Sample::mixResampled(float* out, uint32_t frames, uint32_t channels, float rate, float volume)
{
    // More than 2 channels goes on to the kernel, which reports it as fatal.
    if (channels <= 2 && channels != channels_) {
        setPlaying(false);
        return;
    }
    double left = (length_ - position_) / rate;
    uint32_t mixed = left > 0.0 ? (left >= frames ? frames : static_cast<uint32_t>(left)) : 0;
    MixTarget target { out, mixed, channels };
    MixSource source { frames_.data(), static_cast<uint32_t>(frames_.size() / channels_) };
    if (interpolation() == Interpolation::Linear)
        position_ = mixLinear(target, source, position_, rate, volume);
    else
        position_ = mixNearest(target, source, position_, rate, volume);
    if (mixed != frames)
        setPlaying(false);
}

int Sample::render(float* out, uint32_t frames, uint32_t channels)
{
    std::fill(out, out + std::size_t { frames } * channels, 0.0f);
    return mix(out, frames, channels);
}

uint32_t Sample::lengthInOutputFrames() const
{
    return truncateToFrames(length_ / rate());
}

uint32_t Sample::positionInOutputFrames() const
{
    return truncateToFrames(position_ / rate());
}

int64_t Sample::seek(uint32_t outputFrame)
{
    uint32_t position = truncateToFrames(static_cast<float>(outputFrame) * rate());
    if (position > static_cast<uint32_t>(std::max(length_, 0))) {
        position_ = 0.0;
        return -1;
    }
    position_ = position;
    return position;
}

int Sample::load(std::u16string_view path)
{
    return WavReader(*this).load(path);
}

void Sample::unload()
{
    path_.clear();
    displayName_.clear();
    position_ = 0.0;
    length_ = 0;
    frames_ = {};
}

bool Sample::setFrames(std::vector<float> interleaved, uint32_t channels)
{
    channels = std::clamp<uint32_t>(channels, 1, 2);
    uint32_t length = static_cast<uint32_t>(interleaved.size() / channels);
    length_ = 0;
    if (!tryResize(interleaved, (std::size_t { length } + 1) * channels))
        return false;
    std::fill(interleaved.end() - channels, interleaved.end(), 0.0f);
    frames_ = std::move(interleaved);
    channels_ = channels;
    length_ = static_cast<int32_t>(length);
    return true;
}

} // namespace pulsara
