#include "Sound/WavExporter.h"

#include "../../bench/StressSong.h"
#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "base/Path.h"
#include "support/ReportRecorder.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedSource.h"
#include "support/WavBuilder.h"

#include <QCryptographicHash>
#include <gtest/gtest.h>

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
    return test::samples16(folder.read("out.wav"), WavExporter::kHeaderBytes);
}

// Loads every sample from the song's own folder.
class BesideTheSong final : public SampleLocator {
public:
    void locateSample(Song& song, std::u16string_view storedName, uint32_t instrument) override
    {
        PathString folder, path;
        parentFolder(folder, songPath);
        joinPath(path, folder.view(), storedName);
        song.instrument(instrument).sample().load(path.view());
    }
    PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view) override { return PathString(samplePath); }

    std::u16string songPath = fromUtf8(PULSARA_SHARE_DIR "/Demo/zzzDemo.kqu");
};

enum class Tune { Demo, Stress, StressFast };

std::unique_ptr<Song> tune(Tune which, AudioFormat format)
{
    if (which != Tune::Demo) {
        auto song = bench::stressSong(which == Tune::Stress ? 8 : 40, format);
        if (which == Tune::StressFast) {
            // 735 frames per step at 44100 Hz: every 200 ms block spans three passes of 4 steps.
            song->setStepsPerPattern(4);
            song->setBeatsPerPattern(1);
            song->player().setTempo(900.0f);
        }
        return song;
    }
    auto song = std::make_unique<Song>(format);
    BesideTheSong locator;
    EXPECT_EQ(loadSong(*song, locator.songPath, locator), 1);
    return song;
}

} // namespace

// Exports of the demo song and of the stress song in every format with both interpolations, and of
// the stress song played so fast that each block spans several passes, keep the bytes they had
// when these fingerprints were taken: a change to the mix, the sequencer or the exporter that
// moves a single output sample shows here. One fingerprint covers each tune's exports in turn.
TEST(WavExporter, ExportsKeepTheirBytes)
{
    using Format = std::tuple<uint32_t, uint8_t, Interpolation>;
    std::vector<Format> every;
    for (uint32_t rate : { 22050, 44100, 48000 })
        for (uint8_t channels : { 1, 2 })
            for (Interpolation interpolation : { Interpolation::None, Interpolation::Linear })
                every.emplace_back(rate, channels, interpolation);
    const std::tuple<Tune, std::vector<Format>, const char*> cases[] = {
        { Tune::Demo, every, "40e1025d860eda4a3dd68be6cd49a124413251f3aa920afeda5317d6499550fb" },
        { Tune::Stress, every, "245ab3ef05e2d97696d0d1a0a14220e12174436d695680c2d3bc0914b1b8695c" },
        { Tune::StressFast, { { 22050, 1, Interpolation::None }, { 44100, 2, Interpolation::Linear } },
            "c3a008d060719ab3a16656648519d71fc9024e9098cd62baf68aed598e796dcb" },
    };
    for (const auto& [which, formats, sha256] : cases) {
        SCOPED_TRACE(::testing::Message() << "tune " << static_cast<int>(which));
        QCryptographicHash hash(QCryptographicHash::Sha256);
        for (auto [rate, channels, interpolation] : formats) {
            std::unique_ptr<Song> song = tune(which, { rate, 32, channels });
            song->setInterpolation(interpolation);
            test::ScratchFolder folder;
            ASSERT_EQ(WavExporter().exportTo(song->player(), folder.file("out.wav")), 1);
            std::vector<uint8_t> bytes = folder.read("out.wav");
            hash.addData(QByteArrayView(bytes.data(), qsizetype(bytes.size())));
        }
        EXPECT_EQ(hash.result().toHex().toStdString(), sha256);
    }
}

TEST(WavExporter, WritesA16BitPcmHeaderInTheSourceFormat)
{
    // The source's format and length, and the header written.
    const std::tuple<AudioFormat, uint64_t, std::vector<uint8_t>> cases[] = {
        { { 44100, 32, 1 }, 0,
            { 'R', 'I', 'F', 'F', 0x22, 0, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 18, 0, 0, 0, 1, 0, 1, 0, 0x44,
                0xAC, 0, 0, 0x88, 0x58, 0x01, 0, 2, 0, 16, 0, 0, 0, 'd', 'a', 't', 'a', 0, 0, 0, 0 } },
        { { 22050, 32, 2 }, 1000,
            { 'R', 'I', 'F', 'F', 0xC2, 0x0F, 0, 0, 'W', 'A', 'V', 'E', 'f', 'm', 't', ' ', 18, 0, 0, 0, 1, 0, 2, 0, 0x22,
                0x56, 0, 0, 0x88, 0x58, 0x01, 0, 4, 0, 16, 0, 0, 0, 'd', 'a', 't', 'a', 0xA0, 0x0F, 0, 0 } },
    };
    for (const auto& [format, frames, header] : cases) {
        test::ScratchFolder folder;
        RecordingSource source(format, frames, { 0.0f, 0.0f });
        EXPECT_EQ(WavExporter().exportTo(source, folder.file("out.wav")), 1);
        std::vector<uint8_t> bytes = folder.read("out.wav");
        ASSERT_EQ(bytes.size(), 46u + frames * format.channels * 2);
        EXPECT_EQ(std::vector<uint8_t>(bytes.begin(), bytes.begin() + 46), header);
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
    EXPECT_EQ(std::vector(samples.begin(), samples.begin() + 2), (std::vector<int16_t> { 32767, -32767 }));
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
    EXPECT_EQ(reports.summaries(), (std::vector<test::ReportSummary> { { 0, "Sound/fileOut", 14, u"can't create file" } }));
    EXPECT_TRUE(source.blocks.empty());
}
