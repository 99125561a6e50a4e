#include "Sound/WavExporter.h"
#include "support/ReportRecorder.h"

#include "base/text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <unistd.h>

using namespace pulsara;

namespace {

// Renders the same value into every sample and records the block sizes it was asked for.
class ConstantSource final : public SoundSource {
public:
    ConstantSource(AudioFormat format, uint64_t length, std::vector<float> perChannel)
        : format_(format)
        , length_(length)
        , values_(std::move(perChannel))
    {
    }
    void setFormat(const AudioFormat* format) override { format_ = *format; }
    const AudioFormat* format() const override { return &format_; }
    void render(float* out, uint32_t frames, uint32_t channels) override
    {
        blocks.push_back(frames);
        for (uint32_t i = 0; i < frames * channels; ++i)
            out[i] = values_[i % channels];
    }
    uint64_t lengthInFrames() const override { return length_; }
    void seek(uint64_t frame) override { seeks.push_back(frame); }
    void start() override { ++starts; }
    void stop() override { ++stops; }

    std::vector<uint32_t> blocks;
    std::vector<uint64_t> seeks;
    int starts = 0;
    int stops = 0;

private:
    AudioFormat format_;
    uint64_t length_;
    std::vector<float> values_;
};

std::vector<uint8_t> readFile(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return { std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>() };
}

uint32_t le32(const std::vector<uint8_t>& bytes, std::size_t at)
{
    return bytes[at] | bytes[at + 1] << 8 | bytes[at + 2] << 16 | uint32_t(bytes[at + 3]) << 24;
}

uint16_t le16(const std::vector<uint8_t>& bytes, std::size_t at)
{
    return static_cast<uint16_t>(bytes[at] | bytes[at + 1] << 8);
}

int16_t sampleAt(const std::vector<uint8_t>& bytes, std::size_t index)
{
    return static_cast<int16_t>(le16(bytes, WavExporter::kHeaderBytes + 2 * index));
}

class WavExporterTest : public ::testing::Test {
protected:
    // ctest runs tests in parallel processes: each needs a file of its own.
    std::filesystem::path path = std::filesystem::temp_directory_path()
        / ("pulsara_export_" + std::to_string(::getpid()) + "_"
            + ::testing::UnitTest::GetInstance()->current_test_info()->name() + ".wav");
    void TearDown() override { std::filesystem::remove(path); }
    std::u16string target() const { return fromUtf8(path.string()); }
};

} // namespace

TEST_F(WavExporterTest, EmptySongGivesAHeaderOnly)
{
    ConstantSource source({ 44100, 32, 1 }, 0, { 0.0f });
    EXPECT_EQ(WavExporter().exportTo(source, target()), 1);
    std::vector<uint8_t> bytes = readFile(path);
    ASSERT_EQ(bytes.size(), 46u);
    EXPECT_EQ(std::memcmp(bytes.data(), "RIFF", 4), 0);
    EXPECT_EQ(le32(bytes, 4), 34u);
    EXPECT_EQ(std::memcmp(bytes.data() + 8, "WAVEfmt ", 8), 0);
    EXPECT_EQ(le32(bytes, 16), 18u);
    EXPECT_EQ(std::memcmp(bytes.data() + 38, "data", 4), 0);
    EXPECT_EQ(le32(bytes, 42), 0u);
    EXPECT_TRUE(source.blocks.empty());
}

TEST_F(WavExporterTest, HeaderDescribes16BitPcmInTheSourceFormat)
{
    ConstantSource source({ 22050, 32, 2 }, 1000, { 0.0f, 0.0f });
    WavExporter().exportTo(source, target());
    std::vector<uint8_t> bytes = readFile(path);
    EXPECT_EQ(le16(bytes, 20), 1u); // PCM
    EXPECT_EQ(le16(bytes, 22), 2u);
    EXPECT_EQ(le32(bytes, 24), 22050u);
    EXPECT_EQ(le32(bytes, 28), 88200u);
    EXPECT_EQ(le16(bytes, 32), 4u);
    EXPECT_EQ(le16(bytes, 34), 16u);
    EXPECT_EQ(le16(bytes, 36), 0u);
    EXPECT_EQ(le32(bytes, 42), 4000u);
    EXPECT_EQ(le32(bytes, 4), 4034u);
    EXPECT_EQ(bytes.size(), 46u + 4000u);
}

TEST_F(WavExporterTest, RendersFromTheStartIn200MillisecondBlocks)
{
    ConstantSource source({ 44100, 32, 1 }, 20000, { 0.0f });
    WavExporter().exportTo(source, target());
    EXPECT_EQ(WavExporter::blockFrames(44100), 8800u);
    EXPECT_EQ(WavExporter::blockFrames(22050), 4384u);
    EXPECT_EQ(source.blocks, (std::vector<uint32_t> { 8800, 8800, 2400 }));
    EXPECT_EQ(source.seeks, std::vector<uint64_t> { 0 });
    EXPECT_EQ(source.starts, 1);
    EXPECT_EQ(source.stops, 1);
}

TEST_F(WavExporterTest, SamplesAreClippedToFullScaleAndTruncated)
{
    ConstantSource source({ 44100, 32, 2 }, 5000, { 1.5f, -1.5f });
    WavExporter().exportTo(source, target());
    std::vector<uint8_t> bytes = readFile(path);
    EXPECT_EQ(sampleAt(bytes, 0), 32767);
    EXPECT_EQ(sampleAt(bytes, 1), -32767);

    ConstantSource quiet({ 44100, 32, 1 }, 5000, { 0.3f });
    WavExporter().exportTo(quiet, target());
    // 0.3 * 32767 = 9830.1: truncated, not rounded.
    EXPECT_EQ(sampleAt(readFile(path), 0), 9830);
}

TEST_F(WavExporterTest, LastThirtyMillisecondsFadeOut)
{
    const uint64_t total = 10000;
    const uint64_t fade = 1323; // 30 ms at 44100 Hz
    ConstantSource source({ 44100, 32, 1 }, total, { 1.0f });
    WavExporter().exportTo(source, target());
    std::vector<uint8_t> bytes = readFile(path);
    EXPECT_EQ(sampleAt(bytes, total - fade - 1), 32767);
    for (uint64_t framesLeft : { fade - 1, uint64_t(700), uint64_t(1) }) {
        float gain = static_cast<float>(framesLeft) / static_cast<float>(fade);
        EXPECT_EQ(sampleAt(bytes, total - framesLeft), static_cast<int16_t>(1.0f * gain * 32767.0)) << framesLeft;
    }
}

TEST_F(WavExporterTest, UncreatableFileIsReported)
{
    test::ReportRecorder reports;
    ConstantSource source({ 44100, 32, 1 }, 100, { 0.0f });
    EXPECT_EQ(WavExporter().exportTo(source, u"/nonexistent-folder/out.wav"), 0);
    EXPECT_EQ(reports.last().message, u"can't create file");
    EXPECT_EQ(reports.last().source, "Sound/fileOut");
    EXPECT_EQ(reports.last().line, 14);
    EXPECT_EQ(reports.last().code, 0);
    EXPECT_TRUE(source.blocks.empty());
}
