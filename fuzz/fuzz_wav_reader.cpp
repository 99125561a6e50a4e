// Loads arbitrary bytes as a WAV file into a sample, for a stereo and a mono output format, and
// plays what loaded with each method, so that every reader path and the mix kernels meet them.
#include "FuzzInput.h"
#include "Sound/Sample.h"

#include <vector>

using namespace pulsara;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static fuzz::SilentPresenter presenter;
    static const AudioFormat formats[] = { { 44100, 32, 2 }, { 22050, 32, 1 } };
    const std::pair<float, Interpolation> playings[]
        = { { 1.0f, Interpolation::None }, { 0.7f, Interpolation::Linear }, { 1.3f, Interpolation::None }, { 2.5f, Interpolation::Linear } };
    std::u16string path = fuzz::storeInMemoryFile(data, size);
    for (const AudioFormat& format : formats) {
        Sample sample;
        sample.setFormat(&format);
        std::vector<float> block(256 * format.channels);
        try {
            sample.load(path);
            for (auto [rate, method] : playings) {
                sample.setRate(rate);
                sample.setInterpolation(method);
                sample.setPosition(0.0);
                sample.setPlaying(sample.isLoaded());
                for (int blocks = 0; blocks < 4 && sample.isPlaying(); ++blocks)
                    sample.render(block.data(), 256, format.channels);
            }
        } catch (const FatalErrorUnwind&) {
        }
    }
    return 0;
}
