// Runs the pulsara program itself on songs built here, and checks its output, messages and exit
// statuses.
#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "Sound/StoredSamplePath.h"
#include "Sound/WavExporter.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sys/wait.h>

using namespace pulsara;
namespace fs = std::filesystem;

namespace {

struct RunResult {
    int status = -1;
    std::string out;
    std::string err;
};

std::string readText(const fs::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>() };
}

std::string quote(const std::string& text)
{
    std::string quoted = "'";
    for (char c : text)
        quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    return quoted + "'";
}

// Stores sample paths the way the command line and the window do, relative to the song, and
// finds them in the song's folder.
class RelativeLocator final : public SampleLocator {
public:
    explicit RelativeLocator(fs::path songFolder = {})
        : songFolder_(std::move(songFolder))
    {
    }
    void locateSample(Song& song, std::u16string_view storedName, uint32_t slot) override
    {
        song.instrument(slot).sample().load((songFolder_ / fs::path(storedName)).u16string());
    }
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) override
    {
        return makeStoredSamplePath(samplePath, songPath, u"");
    }

private:
    fs::path songFolder_;
};

class CommandLine : public ::testing::Test {
protected:
    fs::path folder;

    void SetUp() override
    {
        std::string pattern = (fs::temp_directory_path() / "pulsara-cli-XXXXXX").string();
        ASSERT_NE(::mkdtemp(pattern.data()), nullptr);
        folder = pattern;
        fs::create_directories(folder / "home/Documents/Pulsara");
    }
    void TearDown() override { fs::remove_all(folder); }

    // Runs pulsara with a home of its own, so that <Documents> is inside the test folder.
    RunResult run(const std::string& arguments)
    {
        fs::path out = folder / "stdout.txt";
        fs::path err = folder / "stderr.txt";
        std::string home = (folder / "home").string();
        std::string command = "HOME=" + quote(home) + " XDG_CONFIG_HOME=" + quote(home + "/.config") + " " + quote(PULSARA_BINARY)
            + " " + arguments + " > " + quote(out.string()) + " 2> " + quote(err.string()) + " < /dev/null";
        int raw = std::system(command.c_str());
        return { WIFEXITED(raw) ? WEXITSTATUS(raw) : -1, readText(out), readText(err) };
    }

    fs::path writeSample(const fs::path& path)
    {
        std::vector<int16_t> wave(2000);
        for (std::size_t i = 0; i < wave.size(); ++i)
            wave[i] = static_cast<int16_t>((i % 50) * 600 - 15000);
        std::vector<uint8_t> bytes = test::makeWav(1, 22050, 16, test::pcm16(wave));
        fs::create_directories(path.parent_path());
        std::ofstream(path, std::ios::binary).write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        return path;
    }

    // A two-position song with a pitched, a quiet and a shortened note on its one instrument.
    fs::path writeSong(const fs::path& samplePath, const std::string& name = "song.kqu")
    {
        Song song;
        song.instrument(0).sample().load(samplePath.u16string());
        song.instrument(0).setName(u"Saw");
        song.player().setTempo(133.0f);
        StepGrid& pattern = song.player().pattern(0);
        pattern.setCell(0, 0, kDefaultNote);
        pattern.setCell(0, 4, { 0.5f, 1.5f, 0 });
        pattern.setCell(0, 8, { 1.0f, 0.75f, 128 });
        song.player().setPatternName(0, u"Beat");
        song.player().playlist().set(0, 0, 1.0f);
        song.player().playlist().set(0, 1, 1.0f);
        RelativeLocator locator;
        fs::path path = folder / name;
        saveSong(song, path.u16string(), locator);
        return path;
    }

    void writeBytes(const fs::path& path, const std::string& bytes)
    {
        std::ofstream(path, std::ios::binary) << bytes;
    }
};

} // namespace

TEST_F(CommandLine, HelpAndVersion)
{
    RunResult help = run("--help");
    EXPECT_EQ(help.status, 0);
    EXPECT_NE(help.out.find("pulsara --export OUT.wav SONG"), std::string::npos);
    RunResult version = run("--version");
    EXPECT_EQ(version.status, 0);
    EXPECT_EQ(version.out.rfind("pulsara ", 0), 0u);
}

TEST_F(CommandLine, BadUsageExitsWithTwo)
{
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
    fs::path song = writeSong(writeSample(folder / "smp/saw.wav"));
    fs::path output = folder / "out.wav";
    RunResult result = run("--export " + quote(output.string()) + " " + quote(song.string()) + " --stereo --rate 48000 --interpolation linear");
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "");

    Song reference(AudioFormat { 48000, 32, 2 });
    reference.setInterpolation(Interpolation::Linear);
    RelativeLocator locator(folder);
    ASSERT_EQ(loadSong(reference, song.u16string(), locator), 1);
    ASSERT_EQ(reference.instrument(0).sample().length(), 2000 * 48000 / 22050);
    fs::path expected = folder / "expected.wav";
    WavExporter().exportTo(reference.player(), expected.u16string());
    std::string bytes = readText(output);
    EXPECT_EQ(bytes.size(), 46 + 2 * 2 * reference.player().lengthInFrames());
    EXPECT_TRUE(bytes == readText(expected));
}

TEST_F(CommandLine, DumpPrintsTheLoadedSongAsJson)
{
    fs::path sample = writeSample(folder / "smp/saw.wav");
    fs::path song = writeSong(sample);
    RunResult result = run("--dump " + quote(song.string()));
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

TEST_F(CommandLine, MissingSampleIsAWarningAndTheInstrumentStaysEmpty)
{
    fs::path sample = writeSample(folder / "smp/saw.wav");
    fs::path song = writeSong(sample);
    fs::remove(sample);
    RunResult result = run("--dump " + quote(song.string()));
    EXPECT_EQ(result.status, 0);
    EXPECT_NE(result.err.find("pulsara: warning: can't find sample \"smp/saw.wav\""), std::string::npos) << result.err;
    EXPECT_NE(result.out.find("{\"slot\": 0, \"name\": \"Saw\", \"path\": \"\", \"volume\": 0.699999988, \"frames\": 0}"),
        std::string::npos);
}

TEST_F(CommandLine, SampleIsFoundInTheDocumentsFolderByItsFileName)
{
    fs::path sample = writeSample(folder / "smp/saw.wav");
    fs::path song = writeSong(sample);
    fs::path moved = folder / "home/Documents/Pulsara/saw.wav";
    fs::rename(sample, moved);
    RunResult result = run("--dump " + quote(song.string()));
    EXPECT_EQ(result.status, 0) << result.err;
    EXPECT_EQ(result.err, "");
    EXPECT_NE(result.out.find("\"path\": \"" + moved.string() + "\""), std::string::npos);
}

TEST_F(CommandLine, BadSongFilesGiveTheirMessageAndStatus)
{
    fs::path song = writeSong(writeSample(folder / "smp/saw.wav"));
    std::string good = readText(song);
    writeBytes(folder / "text.kqu", "hello, world");
    writeBytes(folder / "cut.kqu", good.substr(0, good.size() / 2));
    // A tempo item holding a string instead of a number.
    writeBytes(folder / "corrupt.kqu", std::string("KVS0\x09\x05\x41\x00\x00\x00\x00", 11));

    struct Case {
        const char* file;
        int status;
        std::string message;
    };
    for (const Case& c : std::initializer_list<Case> {
             { "text.kqu", 1, "pulsara: error: Not a kvSong file (" + (folder / "text.kqu").string() + ")\n" },
             { "absent.kqu", 1, "pulsara: error: Can't open kvSong file \"" + (folder / "absent.kqu").string() + "\"\n" },
             { "cut.kqu", 0, "" },
             { "corrupt.kqu", 255, "pulsara: FATAL ERROR: The song file is corrupted (" + (folder / "corrupt.kqu").string() + ")\n" },
         }) {
        RunResult result = run("--export " + quote((folder / "out.wav").string()) + " " + quote((folder / c.file).string()));
        EXPECT_EQ(result.status, c.status) << c.file;
        EXPECT_EQ(result.err, c.message) << c.file;
    }
}

TEST_F(CommandLine, BrokenSampleIsReportedWithItsFileAndTheExportStillWritten)
{
    fs::path sample = writeSample(folder / "smp/saw.wav");
    fs::path song = writeSong(sample);
    writeBytes(sample, "RIFX");
    fs::path output = folder / "out.wav";
    RunResult result = run("--export " + quote(output.string()) + " " + quote(song.string()));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "pulsara: error: Missing RIFF: Can't read WAV file. (" + sample.string() + ")\n");
    EXPECT_TRUE(fs::exists(output));
}

TEST_F(CommandLine, UnwritableOutputIsReported)
{
    fs::path song = writeSong(writeSample(folder / "smp/saw.wav"));
    std::string output = (folder / "no/such/folder/out.wav").string();
    RunResult result = run("--export " + quote(output) + " " + quote(song.string()));
    EXPECT_EQ(result.status, 1);
    EXPECT_EQ(result.err, "pulsara: error: can't create file (" + output + ")\n");
}
