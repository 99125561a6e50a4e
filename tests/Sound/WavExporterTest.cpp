#include "Sound/WavExporter.h"

#include "../../bench/StressSong.h"
#include "Sound/SampleLocator.h"
#include "Sound/Song.h"
#include "Sound/SongFile.h"
#include "base/Path.h"
#include "support/ReportRecorder.h"
#include "support/ScratchFolder.h"
#include "support/ScriptedSource.h"

#include <QCryptographicHash>
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
// moves a single output sample shows here.
TEST(WavExporter, ExportsKeepTheirBytes)
{
    const struct {
        Tune tune;
        uint32_t rate;
        uint8_t channels;
        Interpolation interpolation;
        const char* sha256;
    } cases[] = {
        { Tune::Demo, 22050, 1, Interpolation::None, "032f470adcd40f924cc05fa88f04ce4c50956fa856a078699680862106f84bf3" },
        { Tune::Demo, 22050, 1, Interpolation::Linear, "47afd8db0e882e2e0a9476fc65954720b1b0e1b027d761e0e5c41504e79a9de6" },
        { Tune::Demo, 22050, 2, Interpolation::None, "f464eb0950cd95e8b0660e8c4a3198b979c3636d048e22aa20a0695db3f395b4" },
        { Tune::Demo, 22050, 2, Interpolation::Linear, "a3e0b963d18f56ad20a00b54e1f0d95d35869b64a85aec7f41921189035a52e5" },
        { Tune::Demo, 44100, 1, Interpolation::None, "150e75e5518c6ed1b13c074d3cfd155256d745dcc7fb5ff5445119eeead41b73" },
        { Tune::Demo, 44100, 1, Interpolation::Linear, "39d22e046a8829e92c08a7bce69c5279f6c4fb830984e3363637e6d3158d0375" },
        { Tune::Demo, 44100, 2, Interpolation::None, "32f1ac20d559c72cf329543c5533a276ddfaf9a0a2e64b9609ee7775532ecc88" },
        { Tune::Demo, 44100, 2, Interpolation::Linear, "0ec839ef389bf1ff3a09851a128e399ec2cbbedc7af9074b7b51e4c0465451bc" },
        { Tune::Demo, 48000, 1, Interpolation::None, "6644ba1f81cdceabfe7c57244ee5181c9b5443a824c3cd6ea43785b3f1f40f23" },
        { Tune::Demo, 48000, 1, Interpolation::Linear, "2383a36b92216dce7392f6773979e3d67e1a41e34d144af899c28e727af6ee83" },
        { Tune::Demo, 48000, 2, Interpolation::None, "97b867e5d7ab63d46c2660d1b4f31f3ecb020696e63c8435fc8a3cde65be69e2" },
        { Tune::Demo, 48000, 2, Interpolation::Linear, "c2fe20d957a567d8238debfacd2bd983ac22db48a91560c7f7b14cd5f9a0e616" },
        { Tune::Stress, 22050, 1, Interpolation::None, "785e68c3be8c73b696d3b785cd7abc70abccbceffc56182d2f269876b56ec445" },
        { Tune::Stress, 22050, 1, Interpolation::Linear, "67eb6867d68c71717d6cc728d8d3d92f0972160b72069148231265117937c710" },
        { Tune::Stress, 22050, 2, Interpolation::None, "f5c0d7f9c747a52095bafb62fbc3905c4e778268ac0a3d26f5166d7fe7588375" },
        { Tune::Stress, 22050, 2, Interpolation::Linear, "812dc3a2a6d7a797a3d1ab5d059d0e731cdd089b961c8a3f2266d8a1c71643cd" },
        { Tune::Stress, 44100, 1, Interpolation::None, "8268d7128fe0f1806e2c34ebb370822ed614fa0ad2d2adc2608ba2bd049ada5e" },
        { Tune::Stress, 44100, 1, Interpolation::Linear, "cfef8839a3c8ed6d05e469a029d466da93181cf8dc7d54eee07dbe1769cb9303" },
        { Tune::Stress, 44100, 2, Interpolation::None, "9ab201930fa1f8265e94658a7e0f6fdf9009fd34b2619680e8fa1ec0ce050f13" },
        { Tune::Stress, 44100, 2, Interpolation::Linear, "454b46aafa4fd764d387916c3419a1c4b562707c59aee21f3dcdbcca9cb72b87" },
        { Tune::Stress, 48000, 1, Interpolation::None, "f317c71c785c58b600df66ad9a6c99c01d10b91e0c112836397b3d85448749f3" },
        { Tune::Stress, 48000, 1, Interpolation::Linear, "7f43687d0449eab5b2bd4cc7684f535b5945944bd4ca38a8da883b08d0af9a54" },
        { Tune::Stress, 48000, 2, Interpolation::None, "4994377ea7ea892048fa5ef4dc33e512724c536cbd2a09cfa66351d0c9116ad6" },
        { Tune::Stress, 48000, 2, Interpolation::Linear, "5f296f48f80c7f11932337e58e6a26651b5a0c5084b77e5bf6714c59254dc7fa" },
        { Tune::StressFast, 22050, 1, Interpolation::None, "d3d2930a8c467e1a7fb05a0986ee5776e3ad61668b01ac3e7a84dfd65a121ab0" },
        { Tune::StressFast, 44100, 2, Interpolation::Linear, "3bcc846014b41e2f28f728095ece3a3ddd74f3efa60150f40cc03765bf2d29ae" },
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(::testing::Message() << "tune " << static_cast<int>(c.tune) << ", " << c.rate << " Hz, "
                                          << int(c.channels) << " channels, interpolation "
                                          << static_cast<int>(c.interpolation));
        std::unique_ptr<Song> song = tune(c.tune, { c.rate, 32, c.channels });
        song->setInterpolation(c.interpolation);
        test::ScratchFolder folder;
        ASSERT_EQ(WavExporter().exportTo(song->player(), folder.file("out.wav")), 1);
        std::vector<uint8_t> bytes = folder.read("out.wav");
        EXPECT_GT(bytes.size(), 100000u);
        EXPECT_EQ(QCryptographicHash::hash(QByteArrayView(bytes.data(), qsizetype(bytes.size())), QCryptographicHash::Sha256).toHex().toStdString(), c.sha256);
    }
}

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
    EXPECT_EQ(reports.summaries(), (std::vector<test::ReportSummary> { { 0, "Sound/fileOut", 14, u"can't create file" } }));
    EXPECT_TRUE(source.blocks.empty());
}
