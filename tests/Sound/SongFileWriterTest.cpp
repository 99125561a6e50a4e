#include "Sound/SongWriter.h"

#include "SongFileTestSupport.h"
#include "support/ScratchFolder.h"
#include "support/WavBuilder.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace pulsara;
using namespace pulsara::testing;

namespace {

std::vector<uint8_t> writeSong(const Song& song, SampleLocator&& locator = RecordingLocator())
{
    return SongWriter(song, locator, u"/songs/a.kqu").write();
}

bool contains(const std::vector<uint8_t>& bytes, const std::vector<uint8_t>& part)
{
    return std::search(bytes.begin(), bytes.end(), part.begin(), part.end()) != bytes.end();
}

// The file of arrangeSong(), item by item: instruments and patterns in display order (slots
// 39..0, patterns 10..39 then 0..9), each pattern's rows in instrument display order, names
// only where there are names, empty sample paths.
SongBytes arrangedFile()
{
    SongBytes file = SongBytes().magic().doubleItem(8, 0.45f).doubleItem(9, 97.5).longItem(14, 48);
    file.code(10).stringItem(26, u"kick").stringItem(15, u"").doubleItem(8, 0.9f).end();
    for (int slot = 38; slot > 0; --slot)
        file.code(10).stringItem(15, u"").doubleItem(8, 0.7f).end();
    file.code(10).stringItem(26, u"far away").stringItem(15, u"").doubleItem(8, 0.7f).end();
    auto emptyRows = [&](int count) {
        for (int row = 0; row < count; ++row)
            file.code(11).end();
    };
    // Each pattern block follows its playlist row.
    file.code(11).longItem(16, 0).longItem(16, 200).end().code(13).stringItem(26, u"intro");
    file.code(11).step(0, 2.0f, 0.5f, 3).end();
    emptyRows(38);
    file.code(11).step(63, 0.25f, 1.0f, -7).end().end();
    for (int pattern = 11; pattern != 9; pattern = (pattern + 1) % 40) {
        file.code(11).end().code(13);
        emptyRows(40);
        file.end();
    }
    file.code(11).longItem(16, 255).end().code(13).stringItem(26, u"outro");
    emptyRows(19); // slot 20 is the 20th row shown
    file.code(11).step(47, 1.0f, 0.0f, 256).end();
    emptyRows(20);
    file.end().longItem(23, 5).longItem(17, 1);
    file.code(18).longItem(20, 3).code(21).longValue(4).longValue(5).end().end();
    file.code(19).longItem(20, 0xFFFFFFFF).code(21).longValue(7).longValue(0xFFFFFFF8).end().end();
    return file.code(24).longValue(2).longValue(200).end();
}

} // namespace

TEST(SongFileWriter, WritesEveryItemInDisplayOrder)
{
    Song song;
    arrangeSong(song);
    std::vector<uint8_t> bytes = writeSong(song);
    EXPECT_EQ(bytes, arrangedFile().bytes);
    // The settings that open the file, a step and the loop that ends the file, as the format spells them.
    const std::vector<uint8_t> head = { 'K', 'V', 'S', '0', //
        0x08, 0x04, 0x00, 0x00, 0x00, 0xC0, 0xCC, 0xCC, 0xDC, 0x3F, 0x00, // volume 0.45f widened
        0x09, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x60, 0x58, 0x40, 0x00, // tempo 97.5
        0x0E, 0x03, 0x30, 0x00, 0x00, 0x00, 0x00 };
    const std::vector<uint8_t> step = { 0x10, 0x03, 0x3F, 0x00, 0x00, 0x00, // step 63 of row 0 in pattern 10
        0x16, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xD0, 0x3F, 0x00, // rate 0.25
        0x08, 0x04, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0xF0, 0x3F, 0x00, // volume 1.0
        0x19, 0x03, 0xF9, 0xFF, 0xFF, 0xFF, 0x00, 0x00, 0x00, 0x00 }; // parameter -7; the step, row and pattern end
    const std::vector<uint8_t> loop = { 0x18, 0x03, 0x02, 0x00, 0x00, 0x00, 0x03, 0xC8, 0x00, 0x00, 0x00, 0x00 };
    ASSERT_GT(bytes.size(), head.size());
    EXPECT_TRUE(std::equal(head.begin(), head.end(), bytes.begin()));
    EXPECT_TRUE(contains(bytes, step));
    EXPECT_TRUE(std::equal(loop.rbegin(), loop.rend(), bytes.rbegin()));
}

TEST(SongFileWriter, StoresSamplePathsWithBackslashes)
{
    struct FixedLocator : RecordingLocator {
        PathString storedSamplePath(std::u16string_view samplePath, std::u16string_view songPath) override
        {
            asked.emplace_back(samplePath, songPath);
            return PathString(u"smp/deep/kick.wav");
        }
        std::vector<std::pair<std::u16string, std::u16string>> asked;
    };
    test::ScratchFolder folder;
    Song song;
    song.instrument(2).sample().load(folder.write("kick.wav", test::makeWav(1, 44100, 16, test::pcm16({ 1, 2 }))));
    ASSERT_TRUE(song.instrument(2).sample().isLoaded());
    FixedLocator locator;
    std::vector<uint8_t> bytes = SongWriter(song, locator, u"/songs/a.kqu").write();
    ASSERT_EQ(locator.asked.size(), 1u) << "only slots with a sample are asked about";
    EXPECT_EQ(locator.asked[0], std::make_pair(folder.file("kick.wav"), std::u16string(u"/songs/a.kqu")));
    EXPECT_TRUE(contains(bytes, SongBytes().stringItem(15, u"smp\\deep\\kick.wav").bytes));
}
