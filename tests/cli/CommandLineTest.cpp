// Runs the pulsara program itself on songs built here, and checks its output, messages, exit
// statuses and, played into a private PulseAudio null sink, its sound.
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/WavExporter.h"
#include "support/RecordingLocator.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <sys/wait.h>

using namespace pulsara;
namespace fs = std::filesystem;

namespace {

struct RunResult {
    int status = -1;
    std::string out;
    std::string err;
};

std::string quote(const fs::path& path)
{
    std::string quoted = "'";
    for (char c : path.string())
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

std::string text(const std::vector<uint8_t>& bytes) { return std::string(bytes.begin(), bytes.end()); }

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

class CommandLine : public ::testing::Test {
protected:
    test::ScratchFolder folder;
    fs::path home = folder.path() / "home";
    fs::path sample = folder.path() / "smp/saw.wav";
    fs::path song = folder.path() / "song.kqu";

    // Runs pulsara with a home of its own, so that <Documents> is inside the test folder; `before`
    // comes before the program: more of its environment, or a command that runs it.
    RunResult run(const std::string& arguments, const std::string& before = "")
    {
        fs::create_directories(home / "Documents/Pulsara");
        std::string command = "HOME=" + quote(home) + " XDG_CONFIG_HOME=" + quote(home / ".config") + " " + before + " "
            + quote(PULSARA_BINARY) + " " + arguments + " > " + quote(folder.path() / "out.txt") + " 2> "
            + quote(folder.path() / "err.txt") + " < /dev/null";
        int raw = std::system(command.c_str());
        return { WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, text(folder.read("out.txt")), text(folder.read("err.txt")) };
    }

    // A two-position song with a pitched, a quiet and a shortened note on its one instrument,
    // a saw wave stored beside it as smp/saw.wav.
    void arrange(Song& target)
    {
        std::vector<int16_t> wave(2000);
        for (std::size_t i = 0; i < wave.size(); ++i)
            wave[i] = static_cast<int16_t>((i % 50) * 600 - 15000);
        target.instrument(0).sample().load(folder.write("smp/saw.wav", test::makeWav(1, 22050, 16, test::pcm16(wave))));
        target.instrument(0).setName(u"Saw");
        target.player().setTempo(133.0f);
        StepGrid& pattern = target.player().pattern(0);
        pattern.setCell(0, 0, kDefaultNote);
        pattern.setCell(0, 4, { 0.5f, 1.5f, 0 });
        pattern.setCell(0, 8, { 1.0f, 0.75f, 128 });
        target.player().setPatternName(0, u"Beat");
        target.player().playlist().set(0, 0, 1.0f);
        target.player().playlist().set(0, 1, 1.0f);
    }
    void SetUp() override
    {
        Song written;
        arrange(written);
        test::RecordingLocator locator;
        ASSERT_EQ(saveSong(written, song.u16string(), locator), 1);
    }
};

} // namespace

TEST_F(CommandLine, HelpVersionAndBadUsage)
{
    RunResult help = run("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("pulsara --export OUT.wav SONG"), std::string::npos);
    RunResult version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.rfind("pulsara ", 0), 0u);
    for (const char* arguments : { "--export", "--dump", "--bogus", "--dump a.kqu --rate 12", "--export o.wav --dump a.kqu",
             "--dump a.kqu --interpolation cubic", "a.kqu b.kqu", "--dump a.kqu --latency x", "--dump a.kqu --loop" }) {
        RunResult result = run(arguments);
        EXPECT_EQ(result.status, 2) << arguments;
        EXPECT_NE(result.err.find("usage:"), std::string::npos) << arguments;
    }
}

// The program's export is byte for byte the export of the same song rendered in-process.
TEST_F(CommandLine, ExportWritesTheSongAsTheEngineRendersIt)
{
    fs::path output = folder.path() / "out.wav";
    RunResult result = run("--export " + quote(output) + " " + quote(song) + " --stereo --rate 48000 --interpolation linear");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out + result.err, "");
    Song reference(AudioFormat { 48000, 32, 2 });
    reference.setInterpolation(Interpolation::Linear);
    arrange(reference);
    ASSERT_EQ(WavExporter().exportTo(reference.player(), folder.file("expected.wav")), 1);
    std::vector<uint8_t> bytes = folder.read("out.wav");
    EXPECT_EQ(bytes.size(), 46 + 2 * 2 * reference.player().lengthInFrames());
    EXPECT_TRUE(bytes == folder.read("expected.wav"));
}

TEST_F(CommandLine, DumpPrintsTheLoadedSongAsJson)
{
    RunResult result = run("--dump " + quote(song));
    EXPECT_EQ(result.status, 0) << result.err;
    for (std::string expected : {
             std::string("{\"tempo\": 133, \"volume\": 0.699999988, \"stepsPerPattern\": 16, \"beatsPerPattern\": 4, "
                         "\"loopStart\": 0, \"loopEnd\": -1, \"editorShown\": 0, \"lastUsedPosition\": 1, "
                         "\"views\": [{\"value\": 0, \"pair\": [0, 0]}, {\"value\": 0, \"pair\": [0, 0]}], "
                         "\"instruments\": [{\"slot\": 0, \"name\": \"Saw\", \"path\": \""),
             sample.string() + "\", \"volume\": 0.699999988, \"frames\": 4000}, {\"slot\": 1, \"name\": \"\", \"path\": \"\"",
             std::string("\"patterns\": [{\"slot\": 0, \"name\": \"Beat\", \"positions\": [0, 1], \"notes\": ["
                         "{\"row\": 0, \"step\": 0, \"volume\": 1, \"rate\": 1, \"param\": 0}, "
                         "{\"row\": 0, \"step\": 4, \"volume\": 0.5, \"rate\": 1.5, \"param\": 0}, "
                         "{\"row\": 0, \"step\": 8, \"volume\": 1, \"rate\": 0.75, \"param\": 128}]}, "
                         "{\"slot\": 1, \"name\": \"\", \"positions\": [], \"notes\": []}"),
             std::string("{\"slot\": 39, \"name\": \"\", \"positions\": [], \"notes\": []}]}\n") }) {
        EXPECT_NE(result.out.find(expected), std::string::npos) << expected << "\n---\n" << result.out.substr(0, 2000);
    }
}

TEST_F(CommandLine, AMissingSampleIsAWarningUnlessTheDocumentsFolderHasItsFileName)
{
    fs::remove(sample);
    RunResult result = run("--dump " + quote(song));
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.err.find("pulsara: warning: can't find sample \"smp/saw.wav\""), std::string::npos) << result.err;
    EXPECT_NE(result.out.find("{\"slot\": 0, \"name\": \"Saw\", \"path\": \"\", \"volume\": 0.699999988, \"frames\": 0}"),
        std::string::npos);

    std::u16string found = folder.write("home/Documents/Pulsara/saw.wav", test::makeWav(1, 22050, 16, test::pcm16({ 1, 2 })));
    result = run("--dump " + quote(song));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_NE(result.out.find("\"path\": \"" + fs::path(found).string() + "\""), std::string::npos);
}

TEST_F(CommandLine, BadFilesGiveTheirMessageAndStatus)
{
    std::vector<uint8_t> good = folder.read("song.kqu");
    folder.write("text.kqu", { 'h', 'e', 'l', 'l', 'o' });
    folder.write("cut.kqu", std::vector<uint8_t>(good.begin(), good.begin() + good.size() / 2));
    // A tempo item holding a string instead of a number.
    folder.write("corrupt.kqu", { 'K', 'V', 'S', '0', 0x09, 0x05, 0x41, 0x00, 0x00, 0x00, 0x00 });
    auto at = [&](const char* name) { return (folder.path() / name).string(); };
    // The song, the output, the exit status and the message.
    for (const auto& [name, output, status, message] : std::initializer_list<std::tuple<const char*, std::string, int, std::string>> {
             { "text.kqu", at("out.wav"), 1, "pulsara: error: Not a kvSong file (" + at("text.kqu") + ")\n" },
             { "absent.kqu", at("out.wav"), 1, "pulsara: error: Can't open kvSong file \"" + at("absent.kqu") + "\"\n" },
             { "cut.kqu", at("out.wav"), 0, "" },
             { "corrupt.kqu", at("out.wav"), 255,
                 "pulsara: FATAL ERROR: The song file is corrupted (" + at("corrupt.kqu") + ")\n" },
             { "song.kqu", at("no/such/folder/out.wav"), 1, "pulsara: error: can't create file (" + at("no/such/folder/out.wav") + ")\n" },
             // A full disk, and the song itself as the output: nothing is replaced.
             { "song.kqu", "/dev/full", 1, "pulsara: error: can't write file \"/dev/full\"\n" },
             { "song.kqu", at("song.kqu"), 1, "pulsara: error: can't write file \"" + at("song.kqu") + "\"\n" },
         }) {
        RunResult result = run("--export " + quote(output) + " " + quote(at(name)));
        EXPECT_EQ(result.status, status) << name;
        EXPECT_EQ(result.err, message) << name;
    }
    EXPECT_EQ(folder.read("song.kqu"), good);
    // A broken sample is reported with its file, and the export is still written.
    folder.write("smp/saw.wav", { 'R', 'I', 'F', 'X' });
    RunResult result = run("--export " + quote(at("broken.wav")) + " " + quote(song));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "pulsara: error: Missing RIFF: Can't read WAV file. (" + sample.string() + ")\n");
    EXPECT_TRUE(fs::exists(at("broken.wav")));
}

// What came out of the sound server is the song: the same sound as its export, at a small lag and
// the same level. The song is two passes of a kick and snare beat (3.2 s at tempo 150), whose
// clear onsets leave one lag that matches.
TEST_F(CommandLine, PlayPlaysTheSongIntoTheSoundServerAsItExports)
{
    Song beat;
    for (uint32_t slot : { 0u, 1u })
        beat.instrument(slot).sample().load((fs::path(PULSARA_SHARE_DIR) / "Demo" / (slot ? "Snare.wav" : "Kick1.wav")).u16string());
    for (auto [row, step, volume] : { std::tuple(0, 0, 1.0f), { 0, 6, 1.0f }, { 0, 10, 1.0f }, { 1, 4, 0.8f }, { 1, 12, 0.8f } })
        beat.player().pattern(0).setCell(row, step, { volume, 1.0f, 0 });
    beat.player().playlist().set(0, 0, 1.0f);
    beat.player().playlist().set(0, 1, 1.0f);
    test::RecordingLocator locator;
    ASSERT_EQ(saveSong(beat, song.u16string(), locator), 1);
    ASSERT_EQ(run("--export " + quote(folder.path() / "export.wav") + " " + quote(song)).status, 0);
    RunResult played = run("--play " + quote(song) + " --rate 44100 --mono --latency 100",
        "bash " + quote(PULSARA_SOURCE_DIR "/tests/cli/with_null_sink.sh") + " --record " + quote(folder.path() / "recorded.raw") + " --");
    if (played.status == 77)
        GTEST_SKIP() << "no PulseAudio server can be started here";
    ASSERT_EQ(played.status, 0) << played.err;

    std::vector<int16_t> reference = test::samples16(folder.read("export.wav"), 46);
    std::vector<int16_t> output = test::samples16(folder.read("recorded.raw"), 0);
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

TEST_F(CommandLine, PlaySaysSoInOneLineWhenNoDeviceCanBeOpened)
{
    RunResult result = run("--play " + quote(song), "PULSARA_AUDIO_BACKEND=pulse PULSE_SERVER=unix:/nonexistent/pulsara-socket");
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "pulsara: error: no audio output device could be opened\n");
}
