#include "Sound/WavReader.h"

#include "Sound/MemorySource.h"
#include "Sound/Sample.h"
#include "support/ReportRecorder.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sys/stat.h>

#include <string>
#include <vector>

using namespace pulsara;
using namespace pulsara::test;

namespace {

// Samples are scaled by 3.051851e-5f, the float nearest 1/32767, 8-bit ones after widening to 16
// bits around 128. Worked out in single precision, 16-bit 32767 gives exactly 1, -32768 (and
// 8-bit 0) a little under -1, 8-bit 255 a little under 1.
constexpr float kMin = -1.000030517578125f;
constexpr float kMax8 = 0.9922177791595459f;

// Every case is read from a file and from memory, which must not differ in anything.
enum class From { File, Memory };

class WavReaderTest : public testing::Test {
protected:
    // Loads the bytes into an empty `sample` for the given output format.
    int load(const std::vector<uint8_t>& bytes, uint32_t rate = 44100, uint8_t channels = 1, From from = From::File)
    {
        sample.unload(); // else the new format would reload the file of the last case
        format = AudioFormat { rate, 32, channels };
        sample.setFormat(&format);
        if (from == From::File)
            return sample.load(folder.write("sample.wav", bytes));
        MemorySource source(bytes);
        return WavReader(sample).load(source, u"sample.wav");
    }

    void expectRefused(const char* source, int line, std::u16string_view message)
    {
        EXPECT_FALSE(sample.isLoaded());
        EXPECT_TRUE(sample.displayName().empty());
        EXPECT_EQ(sample.length(), 0);
        EXPECT_EQ(reports.summaries(), (std::vector<ReportSummary> { { 0, source, line, std::u16string(message) } }));
    }

    ScratchFolder folder;
    ReportRecorder reports;
    AudioFormat format;
    Sample sample;
};

} // namespace

TEST_F(WavReaderTest, ConvertsToTheOutputFormat)
{
    std::vector<uint8_t> pcm = pcm16({ 32767, -32768, 0, 32767 });
    // The header says 16 bits, but 4-byte frames of one channel are float data.
    std::vector<uint8_t> floatSaid16 = makeWav(1, 44100, 32, float32({ 0.5f, 0.75f }));
    floatSaid16[34] = 16;
    WavChunk extensible = formatChunk(1, 44100, 16);
    extensible.bytes.resize(40, 0xAB);
    // What, the file, the output rate and channels, the result (1 when the data is used as it
    // stands), the source's bits and the frames.
    const std::tuple<const char*, std::vector<uint8_t>, uint32_t, uint8_t, int, uint32_t, std::vector<float>> cases[] = {
        { "mono to mono", makeWav(1, 48000, 16, pcm), 48000, 1, 0, 16, { 1, kMin, 0, 1, 0 } },
        { "mono to stereo", makeWav(1, 48000, 16, pcm), 48000, 2, 0, 16, { 1, 1, kMin, kMin, 0, 0, 1, 1, 0, 0 } },
        { "stereo to mono", makeWav(2, 48000, 16, pcm), 48000, 1, 0, 16, { -1.52587890625e-05f, 0.5f, 0 } },
        { "stereo to stereo", makeWav(2, 48000, 16, pcm), 48000, 2, 0, 16, { 1, kMin, 0, 1, 0, 0 } },
        { "8-bit stereo to mono", makeWav(2, 44100, 8, pcm8({ 0, 128, 255, 129 })), 44100, 1, 0, 8,
            { -0.5000152587890625f, 0.5000152587890625f, 0 } },
        { "float in the output format", makeWav(2, 32000, 32, float32({ 0.25f, -0.5f, 1e-8f, 3.0f, -1.0f, 0.125f })),
            32000, 2, 1, 32, { 0.25f, -0.5f, 1e-8f, 3.0f, -1.0f, 0.125f, 0, 0 } },
        { "bits taken from the block align", floatSaid16, 44100, 1, 1, 32, { 0.5f, 0.75f, 0 } },
        { "unpadded chunks between fmt and data",
            makeWav(1, 44100, 16, pcm16({ 32767, 0 }), { { "LIST", { 'I', 'N', 'F', 'O' } }, { "odd ", { 7 } } }), 44100,
            1, 0, 16, { 1, 0, 0 } },
        { "16-bit data shorter than declared",
            riffWave({ formatChunk(1, 44100, 16), { "data", pcm16({ -32768, 32767 }), 0x7FFFFFFFu } }), 44100, 1, 0, 16,
            { kMin, 1, 0 } },
        { "float data shorter than declared",
            riffWave({ formatChunk(1, 44100, 32), { "data", float32({ 0.5f, 0.25f }), 0x7FFFFFFFu } }), 44100, 1, 1, 32,
            { 0.5f, 0.25f, 0 } },
        { "a format block beyond 18 bytes", riffWave({ extensible, { "data", pcm16({ 0, 32767 }) } }), 44100, 1, 0, 16,
            { 0, 1, 0 } },
        // Every other frame lies halfway between its neighbours.
        { "8-bit mono to stereo at twice the rate", makeWav(1, 22050, 8, pcm8({ 128, 0, 128, 255 })), 44100, 2, 0, 8,
            { 0, 0, kMin / 2, kMin / 2, kMin, kMin, kMin / 2, kMin / 2, 0, 0, kMax8 / 2, kMax8 / 2, kMax8, kMax8,
                kMax8 / 2, kMax8 / 2, 0, 0 } },
    };
    for (From from : { From::File, From::Memory }) {
        for (const auto& [what, bytes, rate, channels, result, sourceBits, expected] : cases) {
            SCOPED_TRACE(what);
            EXPECT_EQ(load(bytes, rate, channels, from), result);
            EXPECT_TRUE(sample.isLoaded());
            EXPECT_EQ(sample.channels(), channels);
            EXPECT_EQ(sample.sourceBits(), sourceBits);
            EXPECT_EQ(std::vector<float>(sample.frames(), sample.frames() + (sample.length() + 1) * channels), expected);
        }
    }
    EXPECT_TRUE(reports.reports().empty());
    EXPECT_EQ(std::pair(sample.sourceRate(), sample.sourceChannels()), std::pair(22050u, 1u));
    // 3 frames x 44100 / 32000 = 4.134 frames: the byte count 6 is scaled to 8 first, then halved.
    EXPECT_EQ(load(makeWav(1, 32000, 16, pcm16({ 100, 200, 300 }))), 0);
    EXPECT_EQ(sample.length(), 4);
}

TEST_F(WavReaderTest, RefusesWhatItCannotRead)
{
    std::vector<uint8_t> wav = makeWav(1, 44100, 16, pcm16({ 1, 2 }));
    std::vector<uint8_t> notRiff = wav, notWave = wav, truncatedHeader = wav;
    notRiff[0] = 'X';
    notWave[11] = 'X';
    truncatedHeader.resize(20);
    const char16_t* memory = u"Sorry, not enough memory to perform the operation";
    const char16_t* riff = u"Missing RIFF: Can't read WAV file.";
    const char16_t* noData = u"Missing data: Can't read WAV file.";
    const char16_t* bits = u"Only 8 and 16 bit waves supported";
    const char16_t* channels = u"Only mono and stereo samples supported";
    // What, the file, the output channels, and where the report comes from and what it says.
    const std::tuple<const char*, std::vector<uint8_t>, uint8_t, const char*, int, std::u16string_view> cases[] = {
        { "an empty file", {}, 1, "Sound/file", 140, riff },
        { "no RIFF", notRiff, 1, "Sound/file", 140, riff },
        { "no WAVE", notWave, 1, "Sound/file", 145, u"Missing WAVE: Can't read WAV file." },
        { "a LIST chunk before fmt", riffWave({ { "LIST", { 1, 2, 3, 4 } }, formatChunk(1, 44100, 16), { "data", {} } }), 1, "Sound/file",
            149, u"Missing fmt : Can't read WAV file." },
        { "no data chunk", riffWave({ formatChunk(1, 44100, 16) }), 1, "Sound/file", 167, noData },
        { "a cut fmt chunk", truncatedHeader, 1, "Sound/file", 167, noData },
        { "a chunk larger than the file", makeWav(1, 44100, 16, {}, { { "junk", {}, 0xFFFFFFF0u } }), 1, "Sound/file", 167, noData },
        { "24 bits", makeWav(1, 44100, 24, std::vector<uint8_t>(6)), 1, "Sound/file", 203, bits },
        { "32 bits at another rate", makeWav(1, 22050, 32, float32({ 1 })), 1, "Sound/file", 203, bits },
        { "4 channels", makeWav(4, 44100, 16, std::vector<uint8_t>(8)), 1, "Sound/file", 193, channels },
        { "0 channels", makeWav(0, 44100, 16, {}), 1, "Sound/file", 193, channels },
        { "3 output channels", wav, 3, "Sound/file", 193, channels },
        // A sample no buffer could hold.
        { "rate 0", makeWav(1, 0, 8, std::vector<uint8_t>(10000, 128)), 1, "mem", 14, memory },
        { "rate 1", makeWav(1, 1, 8, std::vector<uint8_t>(10000, 128)), 1, "mem", 14, memory },
    };
    for (From from : { From::File, From::Memory }) {
        for (const auto& [what, bytes, outputChannels, source, line, message] : cases) {
            SCOPED_TRACE(what);
            reports.clear();
            EXPECT_EQ(load(bytes, 44100, outputChannels, from), 0);
            expectRefused(source, line, message);
        }
    }
}

TEST_F(WavReaderTest, NamesTheSampleAfterItsFileAndForgetsItWhenTheNextCannotBeOpened)
{
    sample.setFormat(&format);
    std::u16string named = folder.write("kick.hard.wav", makeWav(1, 44100, 8, pcm8({ 1 })));
    ASSERT_EQ(sample.load(named), 0);
    EXPECT_EQ(sample.displayName(), u"kick");
    // A named pipe is refused at once rather than waited on.
    const std::u16string pipe = folder.file("pipe.wav");
    ASSERT_EQ(::mkfifo(std::filesystem::path(pipe).c_str(), 0600), 0);
    for (const std::u16string& path : { folder.file("missing.wav"), folder.path().u16string(), pipe }) {
        reports.clear();
        EXPECT_EQ(sample.load(path), 0);
        expectRefused("Sound/file", 125, u"can't open wave file");
        // The error context names the file.
        EXPECT_NE(reports.last().text.find(path + u": 0() - can't open wave file"), std::u16string::npos);
    }
}

TEST(WavReaderDeathTest, LoadingWithoutAnOutputFormatIsFatal)
{
    Sample sample;
    EXPECT_EXIT(sample.load(u"/nonexistent.wav"), testing::ExitedWithCode(255),
        "pulsara: FATAL ERROR: No output format specified");
}
