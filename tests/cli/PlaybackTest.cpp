// Plays a short song through RtAudio into a private PulseAudio null sink and checks that what
// came out is the song: the same sound as its export, at a small lag and the same level.
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "support/RecordingLocator.h"
#include "support/ScratchFolder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <sys/wait.h>
#include <vector>

using namespace pulsara;
namespace fs = std::filesystem;

namespace {

constexpr int kNoServer = 77;

std::vector<int16_t> samplesOf(const std::vector<uint8_t>& bytes, size_t skipBytes)
{
    std::vector<int16_t> samples(bytes.size() > skipBytes ? (bytes.size() - skipBytes) / 2 : 0);
    std::memcpy(samples.data(), bytes.data() + skipBytes, samples.size() * 2);
    return samples;
}

size_t firstSound(const std::vector<int16_t>& samples)
{
    return static_cast<size_t>(std::find_if(samples.begin(), samples.end(), [](int16_t s) { return std::abs(s) > 300; }) - samples.begin());
}

// How well `recorded` shifted by `lag` matches `reference`: the normalised cross-correlation,
// and the level of the recording against the reference in dB.
std::pair<double, double> match(const std::vector<int16_t>& reference, const std::vector<int16_t>& recorded, long lag)
{
    double both = 0.0, referenceEnergy = 0.0, recordedEnergy = 0.0;
    for (size_t i = 0; i < reference.size(); ++i) {
        long j = static_cast<long>(i) + lag;
        double r = reference[i];
        double s = j >= 0 && j < static_cast<long>(recorded.size()) ? recorded[static_cast<size_t>(j)] : 0.0;
        both += r * s;
        referenceEnergy += r * r;
        recordedEnergy += s * s;
    }
    if (referenceEnergy == 0.0 || recordedEnergy == 0.0)
        return { 0.0, 0.0 };
    return { both / std::sqrt(referenceEnergy * recordedEnergy), 10.0 * std::log10(recordedEnergy / referenceEnergy) };
}

int run(const std::string& command)
{
    int status = std::system(command.c_str());
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

// Two passes of a kick and snare beat (3.2 s at tempo 150), its samples stored beside it.
struct Playback : ::testing::Test {
    void SetUp() override
    {
        fs::path demo = fs::path(PULSARA_SHARE_DIR) / "Demo";
        Song beat;
        for (uint32_t slot : { 0u, 1u }) {
            const char* name = slot == 0 ? "Kick1.wav" : "Snare.wav";
            fs::copy_file(demo / name, folder.path() / name);
            beat.instrument(slot).sample().load(folder.file(name));
        }
        for (uint32_t step : { 0u, 6u, 10u })
            beat.player().pattern(0).setCell(0, step, { 1.0f, 1.0f, 0 });
        for (uint32_t step : { 4u, 12u })
            beat.player().pattern(0).setCell(1, step, { 0.8f, 1.0f, 0 });
        beat.player().playlist().set(0, 0, 1.0f);
        beat.player().playlist().set(0, 1, 1.0f);
        test::RecordingLocator locator;
        ASSERT_EQ(saveSong(beat, song.u16string(), locator), 1);
    }
    test::ScratchFolder folder;
    fs::path song = folder.path() / "short.kqu";
};

} // namespace

TEST_F(Playback, PlaysTheSongIntoTheSoundServerAsItExports)
{
    ASSERT_EQ(run(std::string(PULSARA_BINARY) + " --export '" + folder.path().string() + "/export.wav' '" + song.string() + "'"), 0);
    int status = run(std::string("bash '") + PULSARA_SOURCE_DIR + "/tests/cli/with_null_sink.sh' --record '"
        + folder.path().string() + "/recorded.raw' -- " + PULSARA_BINARY + " --play '" + song.string()
        + "' --rate 44100 --mono --latency 100 </dev/null");
    if (status == kNoServer)
        GTEST_SKIP() << "no PulseAudio server can be started here";
    ASSERT_EQ(status, 0);

    std::vector<int16_t> reference = samplesOf(folder.read("export.wav"), 46);
    std::vector<int16_t> output = samplesOf(folder.read("recorded.raw"), 0);
    ASSERT_GT(reference.size(), 44100u * 3);
    size_t referenceStart = firstSound(reference);
    size_t outputStart = firstSound(output);
    ASSERT_LT(outputStart, output.size()) << "nothing was heard";

    // Line the first sounds up, then look for the best match within 25 ms of that: the sound
    // server may swallow the first milliseconds of a new stream.
    long coarse = static_cast<long>(outputStart) - static_cast<long>(referenceStart);
    long bestLag = coarse;
    double best = -1.0;
    for (long lag = coarse - 1100; lag <= coarse + 1100; ++lag) {
        if (double c = match(reference, output, lag).first; c > best) {
            best = c;
            bestLag = lag;
        }
    }
    auto [correlation, level] = match(reference, output, bestLag);
    EXPECT_GT(correlation, 0.95) << "lag " << bestLag;
    EXPECT_NEAR(level, 0.0, 3.0);
    // The whole song came out, not only its beginning.
    EXPECT_GE(static_cast<long>(output.size()), bestLag + static_cast<long>(reference.size()) - 4410);
}

TEST_F(Playback, SaysSoInOneLineWhenNoDeviceCanBeOpened)
{
    int status = run("PULSARA_AUDIO_BACKEND=pulse PULSE_SERVER=unix:/nonexistent/pulsara-socket " + std::string(PULSARA_BINARY)
        + " --play '" + song.string() + "' </dev/null 2>'" + folder.path().string() + "/stderr.txt'");
    EXPECT_EQ(status, 1);
    std::vector<uint8_t> errors = folder.read("stderr.txt");
    EXPECT_EQ(std::string(errors.begin(), errors.end()), "pulsara: error: no audio output device could be opened\n");
}
