#include "Sound/WavExporter.h"

#include "base/ErrorReporter.h"
#include "base/Path.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>
#include <memory>
#include <thread>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace pulsara {

namespace {

constexpr const char* kSource = "Sound/fileOut";
constexpr int kCreateLine = 14;
constexpr int kWriteLine = 15;
constexpr uint16_t kBitsPerSample = 16;

struct FileCloser {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, FileCloser>;

void put16(uint8_t* at, uint16_t value)
{
    at[0] = static_cast<uint8_t>(value);
    at[1] = static_cast<uint8_t>(value >> 8);
}

void put32(uint8_t* at, uint32_t value)
{
    put16(at, static_cast<uint16_t>(value));
    put16(at + 2, static_cast<uint16_t>(value >> 16));
}

// The header's sizes are written up front and never patched; the RIFF size is 4 less than the
// true remaining length, which readers have always accepted.
std::array<uint8_t, WavExporter::kHeaderBytes> makeHeader(uint32_t sampleRate, uint16_t channels, uint32_t dataBytes)
{
    std::array<uint8_t, WavExporter::kHeaderBytes> header {};
    uint8_t* h = header.data();
    std::memcpy(h, "RIFF", 4);
    put32(h + 4, dataBytes + 34);
    std::memcpy(h + 8, "WAVEfmt ", 8);
    put32(h + 16, 18);
    put16(h + 20, 1);
    put16(h + 22, channels);
    put32(h + 24, sampleRate);
    put32(h + 28, channels * kBitsPerSample * sampleRate / 8);
    put16(h + 32, static_cast<uint16_t>(channels * kBitsPerSample / 8));
    put16(h + 34, kBitsPerSample);
    put16(h + 36, 0);
    std::memcpy(h + 38, "data", 4);
    put32(h + 42, dataBytes);
    return header;
}

int16_t toPcm(float sample, float gain)
{
    sample = std::clamp(sample, -1.0f, 1.0f);
    return static_cast<int16_t>(sample * gain * 32767.0);
}

} // namespace

WavExporter::WavExporter()
    : threads_(std::max(1u, std::thread::hardware_concurrency()))
{
}

uint32_t WavExporter::blockFrames(uint32_t sampleRate)
{
    return sampleRate * kBlockMs / 1000 / 32 * 32;
}

int WavExporter::exportTo(SoundSource& source, std::u16string_view path, const Progress& progress)
{
    // Not blocking on the open: a named pipe nobody reads is refused rather than waited for.
    int fd = ::open(nativePath(path).c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC | O_NONBLOCK, 0666);
    if (fd >= 0)
        ::fcntl(fd, F_SETFL, ::fcntl(fd, F_GETFL) & ~O_NONBLOCK);
    File file(fd >= 0 ? ::fdopen(fd, "wb") : nullptr);
    if (!file && fd >= 0)
        ::close(fd);
    if (!file) {
        reportError(&errorContext(), kRecoverable, kSource, kCreateLine, u"can't create file");
        return 0;
    }

    const AudioFormat& format = *source.format();
    uint32_t channels = format.channels;
    // The data size field is 32 bits; a longer song is cut where the field ends.
    uint64_t maxFrames = (0xFFFFFFFFull - kHeaderBytes) / (channels * 2ull);
    uint64_t total = std::min(source.lengthInFrames(), maxFrames);
    auto header = makeHeader(format.sampleRate, static_cast<uint16_t>(channels), static_cast<uint32_t>(total * channels * 2));
    bool written = std::fwrite(header.data(), 1, header.size(), file.get()) == header.size();
    bool cancelled = false;

    uint32_t block = blockFrames(format.sampleRate);
    std::vector<float> mix(static_cast<std::size_t>(block) * channels);
    std::vector<int16_t> pcm(mix.size());
    uint64_t fade = static_cast<uint64_t>(format.sampleRate) * kFadeMs / 1000;
    float gain = 1.0f;

    source.setRenderThreads(threads_);
    source.seek(0);
    source.start();
    for (uint64_t remaining = total; remaining > 0 && block > 0 && written && !cancelled;) {
        auto frames = static_cast<uint32_t>(std::min<uint64_t>(block, remaining));
        std::size_t count = static_cast<std::size_t>(frames) * channels;
        source.render(mix.data(), frames, channels);
        if (remaining - frames + 1 >= fade) {
            // No sample of this block lies in the fade: the gain cannot change.
            for (std::size_t j = 0; j < count; ++j)
                pcm[j] = toPcm(mix[j], gain);
        } else {
            for (std::size_t j = 0; j < count; ++j) {
                uint64_t framesLeft = remaining - j / channels;
                if (framesLeft < fade)
                    gain = static_cast<float>(framesLeft) / static_cast<float>(fade);
                pcm[j] = toPcm(mix[j], gain);
            }
        }
        written = std::fwrite(pcm.data(), sizeof(int16_t), count, file.get()) == count;
        remaining -= frames;
        if (progress && !progress(total - remaining, total))
            cancelled = true;
    }
    source.stop();
    source.setRenderThreads(1);
    // A full disk may only show when the buffered bytes go out.
    written = std::fclose(file.release()) == 0 && written;
    if (written && !cancelled)
        return 1;
    // Only a file of our own goes; a device such as /dev/full stays where it is.
    std::string native = nativePath(path);
    struct stat info {};
    if (::stat(native.c_str(), &info) == 0 && S_ISREG(info.st_mode))
        std::remove(native.c_str());
    if (!written) {
        std::u16string message = u"can't write file \"";
        message += path;
        message += u'"';
        reportError(&errorContext(), kRecoverable, kSource, kWriteLine, message);
    }
    return 0;
}

} // namespace pulsara
