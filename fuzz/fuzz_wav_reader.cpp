// Loads arbitrary bytes as a WAV file into a sample, for a stereo and a mono output format, and
// plays what loaded with each method, so that every reader path and the mix kernels meet them.
#include "Sound/Sample.h"
#include "base/ErrorReporter.h"
#include "base/text.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <sys/mman.h>
#include <unistd.h>
#include <vector>

using namespace pulsara;

namespace {

class SilentPresenter final : public ErrorPresenter {
public:
    void present(const ErrorReport&) override { }
};

struct Playing {
    float rate;
    Interpolation method;
};

void play(Sample& sample, uint32_t channels)
{
    std::vector<float> block(256 * channels);
    for (Playing playing : { Playing { 1.0f, Interpolation::None }, Playing { 0.7f, Interpolation::Linear },
             Playing { 1.3f, Interpolation::None }, Playing { 2.5f, Interpolation::Linear } }) {
        sample.setRate(playing.rate);
        sample.setInterpolation(playing.method);
        sample.setPosition(0.0);
        sample.setPlaying(true);
        for (int blocks = 0; blocks < 4 && sample.isPlaying(); ++blocks)
            sample.render(block.data(), 256, channels);
    }
}

// The bytes live in a memory file that the reader opens by its /proc path like any other file.
std::u16string storeInMemoryFile(const uint8_t* data, size_t size)
{
    static const int fd = memfd_create("fuzz.wav", 0);
    if (fd < 0 || ftruncate(fd, 0) != 0 || pwrite(fd, data, size, 0) != static_cast<ssize_t>(size))
        __builtin_trap();
    return fromUtf8("/proc/self/fd/" + std::to_string(fd));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static SilentPresenter presenter;
    static const bool ready = [] {
        setFatalErrorsUnwind(true);
        setErrorPresenter(&presenter);
        return true;
    }();
    (void)ready;

    std::u16string path = storeInMemoryFile(data, size);
    static const AudioFormat formats[] = { { 44100, 32, 2 }, { 22050, 32, 1 } };
    for (const AudioFormat& format : formats) {
        Sample sample;
        sample.setFormat(&format);
        try {
            sample.load(path);
            if (sample.isLoaded())
                play(sample, format.channels);
        } catch (const FatalErrorUnwind&) {
        }
    }
    return 0;
}
