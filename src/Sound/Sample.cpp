#include "Sound/Sample.h"

#include "Sound/Resampler.h"
#include "Sound/WavReader.h"
#include "base/mem.h"

#include <algorithm>
#include <new>
#include <thread>
#include <utility>

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

// Marks a mix in and out of the published data for as long as it reads it. The counter and the
// pointer are sequentially consistent on both sides: either the GUI thread's look at the counter
// after its swap sees this reader, or this reader sees the new pointer.
class Sample::DataReader {
public:
    explicit DataReader(Sample& sample)
        : readers_(sample.readers_)
    {
        readers_.fetch_add(1, std::memory_order_seq_cst);
        data_ = sample.published_.load(std::memory_order_seq_cst);
    }
    ~DataReader() { readers_.fetch_sub(1, std::memory_order_release); }
    DataReader(const DataReader&) = delete;
    DataReader& operator=(const DataReader&) = delete;

    const SampleData* data() const { return data_; }

private:
    std::atomic<uint32_t>& readers_;
    const SampleData* data_ = nullptr;
};

void Sample::setFormat(const AudioFormat* format)
{
    format_ = format;
    if (!path_.empty())
        load(path_.view());
}

void Sample::publish(std::unique_ptr<SampleData> data)
{
    if (data)
        data->serial = ++lastSerial_;
    published_.store(data.get(), std::memory_order_seq_cst);
    std::unique_ptr<SampleData> replaced = std::exchange(data_, std::move(data));
    if (readers_.load(std::memory_order_seq_cst) == 0) {
        // No mix is under way, and every later one reads the new data.
        retired_.clear();
        return;
    }
    if (!replaced)
        return;
    try {
        retired_.push_back(std::move(replaced));
    } catch (const std::bad_alloc&) {
        // With no room to keep it for later, wait for the mix under way to end: mixes never
        // block, and any later one reads the new data.
        while (readers_.load(std::memory_order_seq_cst) != 0)
            std::this_thread::yield();
    }
}

std::size_t Sample::reclaim()
{
    // Every retired block was replaced before now, so a mix that could still read one began
    // before now too and is counted until it ends.
    if (!retired_.empty() && readers_.load(std::memory_order_acquire) == 0)
        retired_.clear();
    return retired_.size();
}

int Sample::mix(float* out, uint32_t frames, uint32_t channels)
{
    if (!isPlaying())
        return 0;
    DataReader reader(*this);
    const SampleData* data = reader.data();
    // A note goes on only in the data it started on: new data may be shorter or laid out for
    // another channel count, and its frames are another sound.
    if (!data || (noteSerial_ != kNoNote && noteSerial_ != data->serial)) {
        setPlaying(false);
        position_ = 0.0;
        return -1;
    }
    noteSerial_ = data->serial;
    float rate = this->rate();
    float volume = this->volume();
    // A position before the data is no state mixing can start from.
    if (!(position_ >= 0.0)) {
        setPlaying(false);
        return -1;
    }
    if (rate == 1.0f)
        mixDirect(*data, out, frames, channels, volume);
    else
        mixResampled(*data, out, frames, channels, rate, volume);
    return -1;
}

void Sample::mixDirect(const SampleData& data, float* out, uint32_t frames, uint32_t channels, float volume)
{
    double remaining = data.length - position_;
    // The frames are laid out for the sample's own channel count; another count cannot be copied.
    if (!(remaining >= 0.0) || channels != data.channels) {
        setPlaying(false);
        return;
    }
    uint64_t wanted = uint64_t { frames } * channels;
    uint64_t count = std::min(wanted, uint64_t { static_cast<uint32_t>(remaining) } * channels);
    auto start = static_cast<uint32_t>(position_);
    position_ += static_cast<double>(count / channels);
    mixCopy(out, data.frames.data() + std::size_t { start } * channels, static_cast<uint32_t>(count), volume);
    if (count != wanted)
        setPlaying(false);
}

void Sample::mixResampled(const SampleData& data, float* out, uint32_t frames, uint32_t channels, float rate, float volume)
{
    // More than 2 channels goes on to the kernel, which reports it as fatal.
    if (channels <= 2 && channels != data.channels) {
        setPlaying(false);
        return;
    }
    double left = (data.length - position_) / rate;
    uint32_t mixed = left > 0.0 ? (left >= frames ? frames : static_cast<uint32_t>(left)) : 0;
    MixTarget target { out, mixed, channels };
    MixSource source { data.frames.data(), static_cast<uint32_t>(data.frames.size() / data.channels) };
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
    return truncateToFrames(length() / rate());
}

uint32_t Sample::positionInOutputFrames() const
{
    return truncateToFrames(position_ / rate());
}

int64_t Sample::seek(uint32_t outputFrame)
{
    DataReader reader(*this);
    int32_t length = reader.data() ? reader.data()->length : 0;
    uint32_t position = truncateToFrames(static_cast<float>(outputFrame) * rate());
    if (position > static_cast<uint32_t>(std::max(length, 0))) {
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
    publish(nullptr);
}

bool Sample::setFrames(std::vector<float> interleaved, uint32_t channels)
{
    channels = std::clamp<uint32_t>(channels, 1, 2);
    uint32_t length = static_cast<uint32_t>(interleaved.size() / channels);
    if (!tryResize(interleaved, (std::size_t { length } + 1) * channels)) {
        publish(nullptr);
        return false;
    }
    std::fill(interleaved.end() - channels, interleaved.end(), 0.0f);
    auto data = std::make_unique<SampleData>();
    data->frames = std::move(interleaved);
    data->channels = channels;
    data->length = static_cast<int32_t>(length);
    publish(std::move(data));
    return true;
}

} // namespace pulsara
