#include "Sound/WavReader.h"

#include "Sound/PcmConverter.h"
#include "Sound/Sample.h"
#include "base/ErrorReporter.h"
#include "support/ReportRecorder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <string>
#include <vector>

using namespace pulsara;
using namespace pulsara::test;

namespace {

std::u16string u16(const std::string& text)
{
    return std::u16string(text.begin(), text.end());
}

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
        EXPECT_EQ(reports.last().message, u16(message));
    }

    ReportRecorder reports;
    AudioFormat format;
    Sample sample;
};

float pcm16(int16_t value)
{
    return PcmConverter::fromPcm16(value);
}

} // namespace

TEST_F(WavReaderTest, ConvertsMono8BitToStereoAtTwiceTheRate)
{
    EXPECT_EQ(load(makeWav(1, 22050, 8, pcm8({ 128, 192, 64, 255 })), 44100, 2), 0);
    EXPECT_TRUE(sample.isLoaded());
    EXPECT_EQ(sample.length(), 8);
    EXPECT_EQ(sample.channels(), 2u);
    float s0 = 0.0f, s1 = PcmConverter::fromPcm8(192), s2 = PcmConverter::fromPcm8(64), s3 = PcmConverter::fromPcm8(255);
    auto half = [](float a, float b) { return static_cast<float>(a + 0.5 * (b - a)); };
    std::vector<float> mono { s0, half(s0, s1), s1, half(s1, s2), s2, half(s2, s3), s3, half(s3, 0.0f) };
    std::vector<float> expected;
    for (float value : mono)
        expected.insert(expected.end(), { value, value });
    expected.insert(expected.end(), { 0.0f, 0.0f });
    EXPECT_EQ(frames(), expected);
    EXPECT_EQ(sample.sourceRate(), 22050u);
    EXPECT_EQ(sample.sourceChannels(), 1u);
    EXPECT_EQ(sample.sourceBits(), 8u);
}

TEST_F(WavReaderTest, ConvertsEveryChannelLayoutAtTheOutputRate)
{
    struct Case {
        uint16_t fileChannels;
        uint8_t outputChannels;
        std::vector<float> expected;
    };
    float a = pcm16(1000), b = pcm16(-3000), c = pcm16(32767), d = pcm16(-32768);
    for (const Case& x : { Case { 1, 1, { a, b, c, d, 0 } }, Case { 1, 2, { a, a, b, b, c, c, d, d, 0, 0 } },
             Case { 2, 1, { (a + b) * 0.5f, (c + d) * 0.5f, 0 } }, Case { 2, 2, { a, b, c, d, 0, 0 } } }) {
        EXPECT_EQ(load(makeWav(x.fileChannels, 48000, 16, test::pcm16({ 1000, -3000, 32767, -32768 })), 48000,
                      x.outputChannels),
            0);
        EXPECT_EQ(frames(), x.expected) << x.fileChannels << " to " << int(x.outputChannels) << " channels";
        EXPECT_EQ(sample.sourceBits(), 16u);
    }
}

TEST_F(WavReaderTest, HalvesTheLengthOfSixteenBitDataAfterScaling)
{
    // 3 frames x 44100 / 32000 = 4.134 frames: the byte count 6 is scaled to 8 first, then halved.
    EXPECT_EQ(load(makeWav(1, 32000, 16, test::pcm16({ 100, 200, 300 }))), 0);
    EXPECT_EQ(sample.length(), 4);
}

TEST_F(WavReaderTest, LoadsFloatFilesInTheOutputFormatDirectly)
{
    std::vector<float> data { 0.25f, -0.5f, 1e-8f, 3.0f, -1.0f, 0.125f };
    EXPECT_EQ(load(makeWav(2, 32000, 32, float32(data)), 32000, 2), 1);
    EXPECT_TRUE(sample.isLoaded());
    EXPECT_EQ(sample.length(), 3);
    data.insert(data.end(), { 0.0f, 0.0f });
    EXPECT_EQ(frames(), data);
    EXPECT_TRUE(reports.reports().empty());
}

TEST_F(WavReaderTest, TakesTheBitsFromTheBlockAlign)
{
    // The header says 16 bits, but 4-byte frames of one channel are float data.
    std::vector<uint8_t> bytes = makeWav(1, 44100, 32, float32({ 0.5f, 0.75f }));
    bytes[34] = 16;
    EXPECT_EQ(load(bytes), 1);
    EXPECT_EQ(frames(), (std::vector<float> { 0.5f, 0.75f, 0.0f }));
}

TEST_F(WavReaderTest, RefusesWhatItCannotRead)
{
    struct Case {
        const char* what;
        std::vector<uint8_t> bytes;
        int line;
        const char* message;
    };
    std::vector<uint8_t> wav = makeWav(1, 44100, 16, test::pcm16({ 1, 2 }));
    std::vector<uint8_t> notRiff = wav;
    notRiff[0] = 'X';
    std::vector<uint8_t> notWave = wav;
    notWave[11] = 'X';
    std::vector<uint8_t> noData = riffWave({ formatChunk(1, 44100, 16) });
    std::vector<uint8_t> truncatedHeader = wav;
    truncatedHeader.resize(20);
    const Case cases[] = {
        { "an empty file", {}, 140, "Missing RIFF: Can't read WAV file." },
        { "no RIFF", notRiff, 140, "Missing RIFF: Can't read WAV file." },
        { "no WAVE", notWave, 145, "Missing WAVE: Can't read WAV file." },
        { "a LIST chunk before fmt", riffWave({ { "LIST", { 1, 2, 3, 4 } }, formatChunk(1, 44100, 16), { "data", {} } }),
            149, "Missing fmt : Can't read WAV file." },
        { "no data chunk", noData, 167, "Missing data: Can't read WAV file." },
        { "a cut fmt chunk", truncatedHeader, 167, "Missing data: Can't read WAV file." },
        { "a chunk larger than the file", makeWav(1, 44100, 16, {}, { { "junk", {}, 0xFFFFFFF0u } }), 167,
            "Missing data: Can't read WAV file." },
        { "24 bits", makeWav(1, 44100, 24, std::vector<uint8_t>(6)), 203, "Only 8 and 16 bit waves supported" },
        { "32 bits at another rate", makeWav(1, 22050, 32, float32({ 1 })), 203, "Only 8 and 16 bit waves supported" },
        { "4 channels", makeWav(4, 44100, 16, std::vector<uint8_t>(8)), 193, "Only mono and stereo samples supported" },
        { "0 channels", makeWav(0, 44100, 16, {}), 193, "Only mono and stereo samples supported" },
    };
    for (const Case& c : cases) {
        SCOPED_TRACE(c.what);
        reports.clear();
        EXPECT_EQ(load(c.bytes), 0);
        expectRefused(c.line, c.message);
    }
}

TEST_F(WavReaderTest, RefusesFilesThatCannotBeOpened)
{
    TempWavFile folder({});
    for (const std::u16string& path : { folder.path() + u".missing", folder.folder().u16string() }) {
        reports.clear();
        sample.setFormat(&format);
        EXPECT_EQ(sample.load(path), 0);
        expectRefused(125, "can't open wave file");
    }
}

TEST_F(WavReaderTest, RefusesAnOutputChannelCountItCannotMake)
{
    EXPECT_EQ(load(makeWav(1, 44100, 16, test::pcm16({ 1 })), 44100, 3), 0);
    expectRefused(193, "Only mono and stereo samples supported");
}

TEST_F(WavReaderTest, SkipsChunksBetweenFmtAndDataWithoutPadding)
{
    // An odd-sized chunk is followed at once by the next one, as the sizes say.
    EXPECT_EQ(load(makeWav(1, 44100, 16, test::pcm16({ 5, 6 }), { { "LIST", { 'I', 'N', 'F', 'O' } }, { "odd ", { 7 } } })),
        0);
    EXPECT_EQ(frames(), (std::vector<float> { pcm16(5), pcm16(6), 0.0f }));
}

TEST_F(WavReaderTest, SkipsTheFormatBlockBeyondEighteenBytes)
{
    WavChunk extensible = formatChunk(1, 44100, 16);
    extensible.bytes.resize(40, 0xAB);
    EXPECT_EQ(load(riffWave({ extensible, { "data", test::pcm16({ 9, 10 }) } })), 0);
    EXPECT_EQ(frames(), (std::vector<float> { pcm16(9), pcm16(10), 0.0f }));
}

TEST_F(WavReaderTest, ReadsOnlyTheDataThatExists)
{
    for (uint16_t bits : { uint16_t { 16 }, uint16_t { 32 } }) {
        std::vector<uint8_t> data = bits == 16 ? test::pcm16({ 300, 400 }) : float32({ 0.5f, 0.25f });
        EXPECT_EQ(load(riffWave({ formatChunk(1, 44100, bits), { "data", data, 0x7FFFFFFFu } })), bits == 32 ? 1 : 0);
        EXPECT_TRUE(sample.isLoaded()) << bits << " bits";
        EXPECT_EQ(sample.length(), 2) << bits << " bits";
    }
    EXPECT_TRUE(reports.reports().empty());
}

TEST_F(WavReaderTest, NamesTheSampleAfterTheFileUpToItsFirstDot)
{
    load(makeWav(1, 44100, 8, pcm8({ 1 })), 44100, 1, "kick.hard.wav");
    EXPECT_EQ(sample.displayName(), u"kick");
    EXPECT_TRUE(sample.path().view().ends_with(u"/kick.hard.wav"));
}

TEST_F(WavReaderTest, PointsTheErrorContextAtThePathAndLeavesItThere)
{
    TempWavFile file(makeWav(1, 44100, 8, pcm8({ 1 })));
    sample.setFormat(&format);
    sample.load(file.path());
    EXPECT_EQ(errorContext().function, file.path());
    std::u16string missing = file.path() + u"x";
    sample.load(missing);
    EXPECT_EQ(errorContext().function, missing);
    EXPECT_NE(reports.last().text.find(missing + u": 0() - can't open wave file"), std::u16string::npos);
}

TEST_F(WavReaderTest, AFailedLoadForgetsTheEarlierFile)
{
    TempWavFile good(makeWav(1, 44100, 16, test::pcm16({ 1, 2, 3 })));
    TempWavFile bad({ 'R', 'I', 'F', 'F' });
    sample.setFormat(&format);
    sample.load(good.path());
    ASSERT_TRUE(sample.isLoaded());
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
    EXPECT_EQ(sample.channels(), 2u);
    EXPECT_EQ(sample.length(), 2);
    EXPECT_EQ(frames(), (std::vector<float> { pcm16(100), pcm16(100), pcm16(200), pcm16(200), 0, 0 }));
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
