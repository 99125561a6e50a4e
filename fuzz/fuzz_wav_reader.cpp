// Loads arbitrary bytes as a WAV file into a sample, for a stereo and a mono output format, and
// plays what loaded with each method, so that every reader path and the mix kernels meet them.
#include "FuzzInput.h"
#include "Sound/MemorySource.h"
#include "Sound/Sample.h"
#include "Sound/WavReader.h"

#include <span>
#include <utility>
#include <vector>

using namespace pulsara;

namespace {

constexpr uint32_t kBlockFrames = 256;

// One sample per output format serves every input. Each load drops the sound of the last one
// before anything else and every playing setting is made again before playing, so nothing an
// earlier input left is seen. The format is set once, before any load: setting it on a sample
// with a path would load that path from disk.
//
// Each input ends with its sound unloaded, so that what it allocated is freed within it:
// libFuzzer runs an input again to look for a leak whenever more was allocated than freed.
struct Player {
    explicit Player(AudioFormat outputFormat)
        : format(outputFormat)
        , block(kBlockFrames * outputFormat.channels)
    {
        sample.setFormat(&format);
    }

    AudioFormat format;
    Sample sample;
    std::vector<float> block;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    static fuzz::SilentPresenter presenter;
    static Player players[] = { Player({ 44100, 32, 2 }), Player({ 22050, 32, 1 }) };
    const std::pair<float, Interpolation> playings[]
        = { { 1.0f, Interpolation::None }, { 0.7f, Interpolation::Linear }, { 1.3f, Interpolation::None }, { 2.5f, Interpolation::Linear } };
    for (Player& player : players) {
        Sample& sample = player.sample;
        try {
            MemorySource source(std::span(data, size));
            WavReader(sample).load(source, u"input.wav");
            for (auto [rate, method] : playings) {
                sample.setRate(rate);
                sample.setInterpolation(method);
                sample.setPosition(0.0);
                sample.setPlaying(sample.isLoaded());
                for (int blocks = 0; blocks < 4 && sample.isPlaying(); ++blocks)
                    sample.render(player.block.data(), kBlockFrames, player.format.channels);
            }
        } catch (const FatalErrorUnwind&) {
        }
        sample.unload();
    }
    return 0;
}
