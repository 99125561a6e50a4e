#include "Sound/WavReader.h"

#include "Sound/InputFile.h"
#include "Sound/PcmConverter.h"
#include "Sound/Resampler.h"
#include "Sound/Sample.h"
#include "base/ErrorReporter.h"
#include "base/Path.h"
#include "base/mem.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <vector>

namespace pulsara {

namespace {

constexpr const char* kSource = "Sound/file";
constexpr int kNoFormatLine = 122;
constexpr int kCantOpenLine = 125;
constexpr int kMissingRiffLine = 140;
constexpr int kMissingWaveLine = 145;
constexpr int kMissingFmtLine = 149;
constexpr int kMissingDataLine = 167;
constexpr int kReadErrorLine = 182;
constexpr int kChannelsLine = 193;
constexpr int kBitsLine = 203;

// Only the first 18 bytes of the format block are looked at; the rest is skipped.
constexpr uint32_t kFormatBytesRead = 18;

// No buffer of a sample may exceed this. A header claiming a sample rate of 1 Hz would
// otherwise ask for gigabytes of silence; such a load ends like a failed allocation.
constexpr uint64_t kMaxBufferBytes = uint64_t { 256 } << 20;

// Sample lengths are signed 32-bit frame counts.
constexpr double kMaxLength = 2147483647.0;

template<typename T>
bool allocate(std::vector<T>& buffer, uint64_t count)
{
    if (count > kMaxBufferBytes / sizeof(T)) {
        reportOutOfMemory();
        return false;
    }
    return tryResize(buffer, static_cast<std::size_t>(count));
}

uint16_t readLe16(const uint8_t* bytes)
{
    return static_cast<uint16_t>(bytes[0] | (bytes[1] << 8));
}

uint32_t readLe32(const uint8_t* bytes)
{
    return static_cast<uint32_t>(bytes[0]) | (static_cast<uint32_t>(bytes[1]) << 8)
        | (static_cast<uint32_t>(bytes[2]) << 16) | (static_cast<uint32_t>(bytes[3]) << 24);
}

bool readTag(ByteSource& file, const char* tag)
{
    char bytes[4] {};
    return file.read(bytes, 4) == 4 && std::memcmp(bytes, tag, 4) == 0;
}

// The file name after the last separator, up to its first ".".
std::u16string displayNameOf(std::u16string_view path)
{
    std::u16string_view name = pathFileName(path);
    return std::u16string(name.substr(0, name.find(u'.')));
}

} // namespace

WavReader::WavReader(Sample& sample)
    : sample_(sample)
{
}

int WavReader::load(std::u16string_view path)
{
    // The text may be a view of the sample's own path, which a failure clears.
    std::u16string pathText(path);
    if (!begin(pathText))
        return 0;
    InputFile file(nativePath(pathText));
    if (!file.isOpen())
        return fail(kCantOpenLine, u"can't open wave file");
    return read(file, pathText);
}

int WavReader::load(ByteSource& source, std::u16string_view path)
{
    std::u16string pathText(path);
    if (!begin(pathText))
        return 0;
    return read(source, pathText);
}

bool WavReader::begin(const std::u16string& path)
{
    errorContext().function = path;
    // The old sound goes first; the playback position is the audio thread's, which starts any
    // note on the new data from its beginning.
    sample_.publish(nullptr);
    if (!sample_.format_) {
        reportError(&errorContext(), kFatal, kSource, kNoFormatLine, u"No output format specified");
        return false;
    }
    return true;
}

int WavReader::read(ByteSource& file, const std::u16string& path)
{
    const AudioFormat* format = sample_.format_;
    keepPath(path);

    if (!readTag(file, "RIFF"))
        return fail(kMissingRiffLine, u"Missing RIFF: Can't read WAV file.");
    file.skip(4);
    if (!readTag(file, "WAVE"))
        return fail(kMissingWaveLine, u"Missing WAVE: Can't read WAV file.");
    if (!readTag(file, "fmt "))
        return fail(kMissingFmtLine, u"Missing fmt : Can't read WAV file.");

    uint8_t sizeBytes[4] {};
    file.read(sizeBytes, 4);
    uint32_t formatSize = readLe32(sizeBytes);
    uint8_t formatBlock[kFormatBytesRead] {};
    file.read(formatBlock, std::min(formatSize, kFormatBytesRead));
    if (formatSize > kFormatBytesRead)
        file.skip(formatSize - kFormatBytesRead);
    uint32_t channels = readLe16(formatBlock + 2);
    uint32_t rate = readLe32(formatBlock + 4);
    uint32_t blockAlign = readLe16(formatBlock + 12);
    // The stored bits-per-sample field is not trusted; the block size says it.
    uint32_t bits = channels ? blockAlign / channels * 8 : 0;
    sample_.sourceRate_ = rate;
    sample_.sourceChannels_ = channels;
    sample_.sourceBits_ = bits;

    uint32_t dataSize = 0;
    for (;;) {
        uint8_t header[8] {};
        if (file.read(header, sizeof header) < sizeof header)
            return fail(kMissingDataLine, u"Missing data: Can't read WAV file.");
        if (std::memcmp(header, "data", 4) == 0) {
            dataSize = readLe32(header + 4);
            break;
        }
        // No pad byte after odd sizes: the chunks follow each other as their sizes say.
        file.skip(readLe32(header + 4));
    }
    // A size claiming more than the file holds reads what is there.
    dataSize = static_cast<uint32_t>(std::min<uint64_t>(dataSize, file.remaining()));

    if (channels != 0 && bits == format->bitsPerSample && rate == format->sampleRate && channels == format->channels)
        return loadDirect(file, dataSize, channels);
    return loadConverted(file, dataSize, channels, rate, bits);
}

int WavReader::loadDirect(ByteSource& file, uint32_t dataSize, uint32_t channels)
{
    uint32_t length = dataSize / 4 / channels;
    std::size_t floats = static_cast<std::size_t>(length) * channels;
    auto data = std::make_unique<SampleData>();
    if (!allocate(data->frames, floats + channels)) {
        forgetPath();
        return 0;
    }
    if (file.read(data->frames.data(), floats * sizeof(float)) < floats * sizeof(float))
        return fail(kReadErrorLine, u"buff read error");
    std::fill(data->frames.begin() + static_cast<std::ptrdiff_t>(floats), data->frames.end(), 0.0f);
    data->channels = channels;
    data->length = static_cast<int32_t>(length);
    sample_.publish(std::move(data));
    return 1;
}

int WavReader::loadConverted(ByteSource& file, uint32_t dataSize, uint32_t channels, uint32_t rate, uint32_t bits)
{
    const AudioFormat& format = *sample_.format_;
    double ratio = static_cast<double>(format.sampleRate) / rate;
    uint32_t outChannels = format.channels;
    if (outChannels == 0 || outChannels > 2 || channels == 0 || channels > 2)
        return fail(kChannelsLine, u"Only mono and stereo samples supported");
    if (bits != 8 && bits != 16)
        return fail(kBitsLine, u"Only 8 and 16 bit waves supported");

    uint32_t bytesPerChannel = dataSize / channels;
    double scaledLength = bytesPerChannel * ratio;
    // A zero or absurd file rate makes a length no buffer could hold.
    if (!(scaledLength < kMaxLength)) {
        reportOutOfMemory();
        forgetPath();
        return 0;
    }
    auto length = static_cast<uint32_t>(scaledLength);
    uint32_t sourceFrames = bytesPerChannel;
    if (bits == 16) {
        length /= 2;
        sourceFrames /= 2;
    }

    // Both float buffers keep a silent spare frame: the linear method reads one frame past the
    // last one it interpolates from.
    auto data = std::make_unique<SampleData>();
    std::vector<float> converted;
    std::vector<uint8_t> bytes;
    if (!allocate(data->frames, (uint64_t { length } + 1) * outChannels)
        || !allocate(converted, (uint64_t { sourceFrames } + 1) * outChannels) || !allocate(bytes, dataSize)) {
        forgetPath();
        return 0;
    }
    file.read(bytes.data(), dataSize);

    PcmConverter(bits, channels, outChannels).convert(bytes.data(), sourceFrames, converted.data());

    std::fill(data->frames.begin(), data->frames.end(), 0.0f);
    MixTarget target { data->frames.data(), length, outChannels };
    MixSource source { converted.data(), sourceFrames + 1 };
    mixLinear(target, source, 0.0, static_cast<float>(1.0 / ratio), 1.0f);

    data->channels = outChannels;
    data->length = static_cast<int32_t>(length);
    sample_.publish(std::move(data));
    return 0;
}

int WavReader::fail(int line, std::u16string_view message)
{
    reportError(&errorContext(), kRecoverable, kSource, line, message);
    forgetPath();
    return 0;
}

void WavReader::forgetPath()
{
    sample_.path_.clear();
    sample_.displayName_.clear();
}

void WavReader::keepPath(std::u16string_view path)
{
    sample_.path_.assign(path);
    sample_.displayName_ = displayNameOf(path);
}

} // namespace pulsara
