#include "Sound/WavExporter.h"

#include "support/ReportRecorder.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedSource.h"

#include <gtest/gtest.h>

#include <cstring>

using namespace pulsara;

namespace {

// Plays the scripted values for `length` frames and records what the exporter asked of it.
struct RecordingSource final : pulsara::testing::ScriptedSource {
    RecordingSource(AudioFormat audioFormat, uint64_t frames, std::vector<float> perChannel)
        : format(audioFormat)
        , length(frames)
    {
        tail = std::move(perChannel);
        setFormat(&format);
    }
    void render(float* out, uint32_t frames, uint32_t channels) override
    {
        blocks.push_back(frames);
        ScriptedSource::render(out, frames, channels);
    }
    uint64_t lengthInFrames() const override { return length; }
    void seek(uint64_t frame) override { seeks.push_back(frame); }
    void start() override { ++starts; }
    void stop() override { ++stops; }

    AudioFormat format;
    uint64_t length;
    std::vector<uint32_t> blocks;
    std::vector<uint64_t> seeks;
    int starts = 0, stops = 0;
};

// Exports the source and returns the file's samples after the header.
std::vector<int16_t> exportedSamples(SoundSource& source)
{
    test::ScratchFolder folder;
    EXPECT_EQ(WavExporter().exportTo(source, folder.file("out.wav")), 1);
    std::vector<uint8_t> bytes = folder.read("out.wav");
    std::vector<int16_t> samples((bytes.size() - WavExporter::kHeaderBytes) / 2);
    std::memcpy(samples.data(), bytes.data() + WavExporter::kHeaderBytes, samples.size() * 2); // little-endian host
    return samples;
}

} // namespace

TEST(WavExporter, WritesA16BitPcmHeaderInTheSourceFormat)
{
    const struct {
        AudioFormat format;
        uint64_t frames;
        std::vector<uint8_t> header;
    } cases[] = {
        { { 44100, 32, 1 }, 0,
            { 'R', 'I', 'F', 'F', 0x22, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 18, 0, 0, 0, 1, 0, 1, 0, 0x44,
                0xAC, 0, 0, 0x88, 0x58, 0x01, 0, 2, 0, 16, 0, 0, 0, 'd', 'a', 't', 'a', 0, 0, 0, 0 } },
        { { 22050, 32, 2 }, 1000,
            { 'R', 'I', 'F', 'F', 0xC2, 0x0F, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 18, 0, 0, 0, 1, 0, 2, 0, 0x22,
                0x56, 0, 0, 0x88, 0x58, 0x01, 0, 4, 0, 16, 0, 0, 0, 'd', 'a', 't', 'a', 0xA0, 0x0F, 0, 0 } },
    };
    for (const auto& c : cases) {
        test::ScratchFolder folder;
        RecordingSource source(c.format, c.frames, { 0.0f, 0.0f });
        EXPECT_EQ(WavExporter().exportTo(source, folder.file("out.wav")), 1);
        std::vector<uint8_t> bytes = folder.read("out.wav");
        ASSERT_EQ(bytes.size(), 46u + c.frames * c.format.channels * 2);
        EXPECT_EQ(std::vector<uint8_t>(bytes.begin(), bytes.begin() + 46), c.header);
    }
}

TEST(WavExporter, RendersFromTheStartIn200MillisecondBlocks)
{
    RecordingSource source({ 44100, 32, 1 }, 20000, { 0.0f });
    exportedSamples(source);
    EXPECT_EQ(WavExporter::blockFrames(22050), 4384u); // 4410 rounded down to a multiple of 32
    EXPECT_EQ(source.blocks, (std::vector<uint32_t> { 8800, 8800, 2400 }));
    EXPECT_EQ(source.seeks, std::vector<uint64_t> { 0 });
    EXPECT_EQ(source.starts, 1);
    EXPECT_EQ(source.stops, 1);
}

TEST(WavExporter, ClipsToFullScaleTruncatesAndFadesTheLastThirtyMilliseconds)
{
    RecordingSource loud({ 44100, 32, 2 }, 5000, { 1.5f, -1.5f });
    std::vector<int16_t> samples = exportedSamples(loud);
    EXPECT_EQ(samples[0], 32767);
    EXPECT_EQ(samples[1], -32767);
    RecordingSource quiet({ 44100, 32, 1 }, 5000, { 0.3f });
    EXPECT_EQ(exportedSamples(quiet)[0], 9830); // 9830.1, truncated
    // The fade spans 1323 frames at 44100 Hz; a frame with n frames left has gain n / 1323.
    RecordingSource full({ 44100, 32, 1 }, 10000, { 1.0f });
    samples = exportedSamples(full);
    const std::pair<int, int16_t> framesLeft[] = { { 1324, 32767 }, { 1323, 32767 }, { 1322, 32742 }, { 700, 17337 }, { 1, 24 } };
    for (auto [left, expected] : framesLeft)
        EXPECT_EQ(samples[10000 - left], expected) << left << " frames left";
}

TEST(WavExporter, UncreatableFileIsReported)
{
    test::ReportRecorder reports;
    RecordingSource source({ 44100, 32, 1 }, 100, { 0.0f });
    EXPECT_EQ(WavExporter().exportTo(source, u"/nonexistent-folder/out.wav"), 0);
    EXPECT_EQ(reports.last().message, u"can't create file");
    EXPECT_EQ(reports.last().source, "Sound/fileOut");
    EXPECT_EQ(reports.last().line, 14);
    EXPECT_EQ(reports.last().code, 0);
    EXPECT_TRUE(source.blocks.empty());
}
