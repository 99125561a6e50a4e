#include "Sound/WavReader.h"

#include "Sound/PcmConverter.h"
#include "Sound/Sample.h"
#include "base/ErrorReporter.h"
#include "support/ReportRecorder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace pulsara;
using namespace pulsara::test;

namespace {

class WavReaderTest : public testing::Test {
protected:
    // Loads the bytes from a temporary file into an empty `sample` for the given output format.
    int load(const std::vector<uint8_t>& bytes, uint32_t rate = 44100, uint8_t channels = 1,
        const std::string& fileName = "sample.wav")
    {
        sample.unload(); // else the new format would reload the file of the last case
        format = AudioFormat { rate, 32, channels };
        sample.setFormat(&format);
        TempWavFile file(bytes, fileName);
        return sample.load(file.path());
    }

    std::vector<float> frames() const
    {
        std::size_t count = static_cast<std::size_t>(sample.length() + 1) * sample.channels();
        return std::vector<float>(sample.frames(), sample.frames() + count);
    }

    void expectRefused(int line, const std::string& message)
    {
        EXPECT_FALSE(sample.isLoaded());
        EXPECT_TRUE(sample.displayName().empty());
        EXPECT_EQ(sample.length(), 0);
        ASSERT_EQ(reports.reports().size(), 1u);
        EXPECT_EQ(reports.last().code, 0);
        EXPECT_EQ(reports.last().source, "Sound/file");
        EXPECT_EQ(reports.last().line, line);
        EXPECT_EQ(reports.last().message, std::u16string(message.begin(), message.end()));
    }

    ReportRecorder reports;
    AudioFormat format;
    Sample sample;
};

float from16(int16_t value)
{
    return PcmConverter::fromPcm16(value);
}

} // namespace

TEST_F(WavReaderTest, ConvertsToTheOutputFormat)
{
    float a = from16(1000), b = from16(-3000), c = from16(32767), d = from16(-32768);
    std::vector<uint8_t> abcd = test::pcm16({ 1000, -3000, 32767, -32768 });
    // Mono 8 bits at half the rate: every other frame lies halfway, as the resampler computes it.
    float s1 = PcmConverter::fromPcm8(192), s2 = PcmConverter::fromPcm8(64), s3 = PcmConverter::fromPcm8(255);
    auto half = [](float x, float y) { return static_cast<float>(x + 0.5 * (y - x)); };
    std::vector<float> upsampled;
    for (float value : { 0.0f, half(0, s1), s1, half(s1, s2), s2, half(s2, s3), s3, half(s3, 0.0f), 0.0f })
        upsampled.insert(upsampled.end(), { value, value });
    // The header says 16 bits, but 4-byte frames of one channel are float data.
    std::vector<uint8_t> floatSaid16 = makeWav(1, 44100, 32, float32({ 0.5f, 0.75f }));
    floatSaid16[34] = 16;
    WavChunk extensible = formatChunk(1, 44100, 16);
    extensible.bytes.resize(40, 0xAB);
    const struct {
        const char* what;
        std::vector<uint8_t> bytes;
        uint32_t rate;
        uint8_t channels;
        int result; // 1 when the data is used as it stands
        uint32_t sourceBits;
        std::vector<float> expected;
    } cases[] = {
        { "mono to mono", makeWav(1, 48000, 16, abcd), 48000, 1, 0, 16, { a, b, c, d, 0 } },
        { "mono to stereo", makeWav(1, 48000, 16, abcd), 48000, 2, 0, 16, { a, a, b, b, c, c, d, d, 0, 0 } },
        { "stereo to mono", makeWav(2, 48000, 16, abcd), 48000, 1, 0, 16, { (a + b) * 0.5f, (c + d) * 0.5f, 0 } },
        { "stereo to stereo", makeWav(2, 48000, 16, abcd), 48000, 2, 0, 16, { a, b, c, d, 0, 0 } },
        { "float in the output format", makeWav(2, 32000, 32, float32({ 0.25f, -0.5f, 1e-8f, 3.0f, -1.0f, 0.125f })),
            32000, 2, 1, 32, { 0.25f, -0.5f, 1e-8f, 3.0f, -1.0f, 0.125f, 0, 0 } },
        { "bits taken from the block align", floatSaid16, 44100, 1, 1, 32, { 0.5f, 0.75f, 0 } },
        { "unpadded chunks between fmt and data",
            makeWav(1, 44100, 16, test::pcm16({ 5, 6 }), { { "LIST", { 'I', 'N', 'F', 'O' } }, { "odd ", { 7 } } }),
            44100, 1, 0, 16, { from16(5), from16(6), 0 } },
        { "16-bit data shorter than declared",
            riffWave({ formatChunk(1, 44100, 16), { "data", test::pcm16({ 3, 4 }), 0x7FFFFFFFu } }), 44100, 1, 0, 16,
            { from16(3), from16(4), 0 } },
        { "float data shorter than declared",
            riffWave({ formatChunk(1, 44100, 32), { "data", float32({ 0.5f, 0.25f }), 0x7FFFFFFFu } }), 44100, 1, 1, 32,
            { 0.5f, 0.25f, 0 } },
        { "a format block beyond 18 bytes", riffWave({ extensible, { "data", test::pcm16({ 9, 10 }) } }), 44100, 1, 0,
            16, { from16(9), from16(10), 0 } },
        { "8-bit mono to stereo at twice the rate", makeWav(1, 22050, 8, pcm8({ 128, 192, 64, 255 })), 44100, 2, 0, 8,
            upsampled },
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        EXPECT_EQ(load(test.bytes, test.rate, test.channels), test.result);
        EXPECT_TRUE(sample.isLoaded());
        EXPECT_EQ(sample.channels(), test.channels);
        EXPECT_EQ(sample.sourceBits(), test.sourceBits);
        EXPECT_EQ(frames(), test.expected);
    }
    EXPECT_TRUE(reports.reports().empty());
    EXPECT_EQ(sample.sourceRate(), 22050u);
    EXPECT_EQ(sample.sourceChannels(), 1u);
}

TEST_F(WavReaderTest, HalvesTheLengthOfSixteenBitDataAfterScaling)
{
    // 3 frames x 44100 / 32000 = 4.134 frames: the byte count 6 is scaled to 8 first, then halved.
    EXPECT_EQ(load(makeWav(1, 32000, 16, test::pcm16({ 100, 200, 300 }))), 0);
    EXPECT_EQ(sample.length(), 4);
}

TEST_F(WavReaderTest, RefusesWhatItCannotRead)
{
    std::vector<uint8_t> wav = makeWav(1, 44100, 16, test::pcm16({ 1, 2 }));
    std::vector<uint8_t> notRiff = wav, notWave = wav, truncatedHeader = wav;
    notRiff[0] = 'X';
    notWave[11] = 'X';
    truncatedHeader.resize(20);
    const struct {
        const char* what;
        std::vector<uint8_t> bytes;
        int line;
        const char* message;
        uint8_t outputChannels = 1;
    } cases[] = {
        { "an empty file", {}, 140, "Missing RIFF: Can't read WAV file." },
        { "no RIFF", notRiff, 140, "Missing RIFF: Can't read WAV file." },
        { "no WAVE", notWave, 145, "Missing WAVE: Can't read WAV file." },
        { "a LIST chunk before fmt", riffWave({ { "LIST", { 1, 2, 3, 4 } }, formatChunk(1, 44100, 16), { "data", {} } }),
            149, "Missing fmt : Can't read WAV file." },
        { "no data chunk", riffWave({ formatChunk(1, 44100, 16) }), 167, "Missing data: Can't read WAV file." },
        { "a cut fmt chunk", truncatedHeader, 167, "Missing data: Can't read WAV file." },
        { "a chunk larger than the file", makeWav(1, 44100, 16, {}, { { "junk", {}, 0xFFFFFFF0u } }), 167,
            "Missing data: Can't read WAV file." },
        { "24 bits", makeWav(1, 44100, 24, std::vector<uint8_t>(6)), 203, "Only 8 and 16 bit waves supported" },
        { "32 bits at another rate", makeWav(1, 22050, 32, float32({ 1 })), 203, "Only 8 and 16 bit waves supported" },
        { "4 channels", makeWav(4, 44100, 16, std::vector<uint8_t>(8)), 193, "Only mono and stereo samples supported" },
        { "0 channels", makeWav(0, 44100, 16, {}), 193, "Only mono and stereo samples supported" },
        { "3 output channels", wav, 193, "Only mono and stereo samples supported", 3 },
    };
    for (const auto& test : cases) {
        SCOPED_TRACE(test.what);
        reports.clear();
        EXPECT_EQ(load(test.bytes, 44100, test.outputChannels), 0);
        expectRefused(test.line, test.message);
    }
}

TEST_F(WavReaderTest, RefusesFilesThatCannotBeOpenedAndLeavesTheErrorContextAtThePath)
{
    TempWavFile file(makeWav(1, 44100, 8, pcm8({ 1 })));
    sample.setFormat(&format);
    sample.load(file.path());
    EXPECT_EQ(errorContext().function, file.path());
    for (const std::u16string& path : { file.path() + u".missing", file.folder().u16string() }) {
        reports.clear();
        EXPECT_EQ(sample.load(path), 0);
        expectRefused(125, "can't open wave file");
        EXPECT_EQ(errorContext().function, path);
        EXPECT_NE(reports.last().text.find(path + u": 0() - can't open wave file"), std::u16string::npos);
    }
}

TEST_F(WavReaderTest, NamesTheSampleAfterTheFileUpToItsFirstDotAndForgetsItAfterAFailedLoad)
{
    load(makeWav(1, 44100, 8, pcm8({ 1 })), 44100, 1, "kick.hard.wav");
    EXPECT_EQ(sample.displayName(), u"kick");
    EXPECT_TRUE(sample.path().view().ends_with(u"/kick.hard.wav"));
    TempWavFile bad({ 'R', 'I', 'F', 'F' });
    sample.load(bad.path());
    EXPECT_FALSE(sample.isLoaded());
    EXPECT_EQ(sample.length(), 0);
    EXPECT_TRUE(sample.displayName().empty());
}

TEST_F(WavReaderTest, ANewFormatReloadsTheFile)
{
    TempWavFile file(makeWav(1, 22050, 16, test::pcm16({ 100, 200 })));
    sample.setFormat(&format);
    sample.load(file.path());
    ASSERT_EQ(sample.length(), 4);
    AudioFormat stereo { 22050, 32, 2 };
    sample.setFormat(&stereo);
    EXPECT_EQ(sample.length(), 2);
    EXPECT_EQ(frames(), (std::vector<float> { from16(100), from16(100), from16(200), from16(200), 0, 0 }));
    EXPECT_EQ(sample.path().view(), file.path());
}

TEST_F(WavReaderTest, ASampleNoBufferCouldHoldIsOutOfMemory)
{
    for (uint32_t rate : { 0u, 1u }) {
        reports.clear();
        EXPECT_EQ(load(makeWav(1, rate, 8, std::vector<uint8_t>(10000, 128))), 0);
        EXPECT_FALSE(sample.isLoaded());
        ASSERT_EQ(reports.reports().size(), 1u) << "rate " << rate;
        EXPECT_EQ(reports.last().source, "mem");
        EXPECT_EQ(reports.last().line, 14);
        EXPECT_EQ(reports.last().message, u"Sorry, not enough memory to perform the operation");
    }
}

TEST(WavReaderDeathTest, LoadingWithoutAnOutputFormatIsFatal)
{
    Sample sample;
    EXPECT_EXIT(sample.load(u"/nonexistent.wav"), testing::ExitedWithCode(255),
        "pulsara: FATAL ERROR: No output format specified");
}
