#include "GUI/BmpReader.h"
#include "GUI/BmpWriter.h"
#include "BmpFileBuilder.h"

#include <gtest/gtest.h>

namespace pulsara {
namespace {

using test::BmpFileBuilder;

TEST(BmpReader, RefusesEmptyFilesFilesWithoutBMAndUncreatableHeaders)
{
    struct Case {
        const char* name;
        std::vector<uint8_t> bytes;
        BmpFault fault;
    };
    BmpFileBuilder good;
    good.pixels = { 1, 2, 3, 0 };
    auto withHeader = [&](auto change) {
        BmpFileBuilder builder = good;
        change(builder);
        return builder.build();
    };
    std::vector<Case> cases = {
        { "empty", {}, BmpFault::NoRead },
        { "one byte", { 'B' }, BmpFault::NotBitmap },
        { "BA", withHeader([](auto&) { }), BmpFault::NotBitmap },
        { "zero width", withHeader([](auto& b) { b.width = 0; }), BmpFault::CannotCreate },
        { "negative width", withHeader([](auto& b) { b.width = -3; }), BmpFault::CannotCreate },
        { "zero height", withHeader([](auto& b) { b.height = 0; }), BmpFault::CannotCreate },
        { "12 bits", withHeader([](auto& b) { b.bitsPerPixel = 12; }), BmpFault::CannotCreate },
        { "compressed", withHeader([](auto& b) { b.compression = 1; }), BmpFault::CannotCreate },
        { "huge", withHeader([](auto& b) { b.width = b.height = 100000; }), BmpFault::CannotCreate },
        { "header only", { 'B', 'M', 0, 0 }, BmpFault::CannotCreate },
    };
    cases[2].bytes[1] = 'A';
    for (const Case& c : cases)
        EXPECT_EQ(readBmp(c.bytes).fault, c.fault) << c.name;
    EXPECT_EQ(readBmp(good.build()).fault, BmpFault::None);
}

TEST(BmpReader, Reads24BitBottomUpRows)
{
    BmpFileBuilder builder;
    builder.width = 4; // 12 bytes a row: no padding
    builder.height = 2;
    builder.pixels = {
        // bottom row: blue, green, red, white
        255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255,
        // top row: black, grey, ...
        0, 0, 0, 128, 128, 128, 1, 2, 3, 4, 5, 6 };
    BmpImage bitmap = readBmp(builder.build());
    ASSERT_EQ(bitmap.fault, BmpFault::None);
    ASSERT_EQ(bitmap.image.size(), QSize(4, 2));
    EXPECT_EQ(bitmap.image.pixel(0, 1), qRgb(0, 0, 255));
    EXPECT_EQ(bitmap.image.pixel(2, 1), qRgb(255, 0, 0));
    EXPECT_EQ(bitmap.image.pixel(1, 0), qRgb(128, 128, 128));
    EXPECT_EQ(bitmap.image.pixel(3, 0), qRgb(6, 5, 4));
}

TEST(BmpReader, NegativeHeightIsTopDown)
{
    BmpFileBuilder builder;
    builder.width = 4;
    builder.height = -2;
    builder.pixels = std::vector<uint8_t>(24, 0);
    builder.pixels[2] = 255; // first pixel of the first row in the file: red
    BmpImage bitmap = readBmp(builder.build());
    ASSERT_EQ(bitmap.fault, BmpFault::None);
    // The copy count takes the low 16 bits of the height, far more than the file has; only
    // what the file holds is copied.
    EXPECT_EQ(bitmap.image.pixel(0, 0), qRgb(255, 0, 0));
    EXPECT_EQ(bitmap.image.pixel(0, 1), qRgb(0, 0, 0));
}

TEST(BmpReader, Reads8BitThroughTheColourTable)
{
    BmpFileBuilder builder;
    builder.width = 4;
    builder.height = 1;
    builder.bitsPerPixel = 8;
    builder.palette = { 0x000000, 0xFF0000, 0x00FF00, 0x0000FF };
    builder.pixels = { 3, 2, 1, 0 };
    BmpImage bitmap = readBmp(builder.build());
    ASSERT_EQ(bitmap.fault, BmpFault::None);
    EXPECT_EQ(bitmap.image.pixel(0, 0), qRgb(0, 0, 255));
    EXPECT_EQ(bitmap.image.pixel(1, 0), qRgb(0, 255, 0));
    EXPECT_EQ(bitmap.image.pixel(2, 0), qRgb(255, 0, 0));
    EXPECT_EQ(bitmap.image.pixel(3, 0), qRgb(0, 0, 0));
}

TEST(BmpReader, RowsAreTakenWithoutPaddingSoOddWidthsComeOutWrong)
{
    // (bits x height x width) / 8 = 18 bytes are copied straight into rows padded to 12 bytes.
    BmpFileBuilder padded;
    padded.width = 3;
    padded.height = 2;
    padded.pixels = {
        10, 10, 10, 20, 20, 20, 30, 30, 30, 0, 0, 0, // bottom row and its padding
        40, 40, 40, 50, 50, 50, 60, 60, 60, 0, 0, 0 }; // top row and its padding
    BmpImage bitmap = readBmp(padded.build());
    ASSERT_EQ(bitmap.fault, BmpFault::None);
    // A padded file keeps its rows in place but loses its tail: the last pixel stays black.
    EXPECT_EQ(bitmap.image.pixel(2, 1), qRgb(30, 30, 30));
    EXPECT_EQ(bitmap.image.pixel(1, 0), qRgb(50, 50, 50));
    EXPECT_EQ(bitmap.image.pixel(2, 0), qRgb(0, 0, 0));

    BmpFileBuilder unpadded = padded;
    unpadded.pixels = { 10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40, 50, 50, 50, 60, 60, 60 };
    bitmap = readBmp(unpadded.build());
    ASSERT_EQ(bitmap.fault, BmpFault::None);
    // A file without padding comes out shifted: the top row starts one pixel late.
    EXPECT_EQ(bitmap.image.pixel(2, 1), qRgb(30, 30, 30));
    EXPECT_EQ(bitmap.image.pixel(0, 0), qRgb(50, 50, 50));
    EXPECT_EQ(bitmap.image.pixel(1, 0), qRgb(60, 60, 60));
    EXPECT_EQ(bitmap.image.pixel(2, 0), qRgb(0, 0, 0));
}

TEST(BmpReader, FileShorterThanItsHeaderClaimsGivesBlackForTheMissingBytes)
{
    BmpFileBuilder builder;
    builder.width = 4;
    builder.height = 4;
    builder.pixels = { 0, 0, 255 }; // one pixel of 16
    BmpImage bitmap = readBmp(builder.build());
    ASSERT_EQ(bitmap.fault, BmpFault::None);
    EXPECT_EQ(bitmap.image.pixel(0, 3), qRgb(255, 0, 0));
    EXPECT_EQ(bitmap.image.pixel(1, 3), qRgb(0, 0, 0));
    EXPECT_EQ(bitmap.image.pixel(3, 0), qRgb(0, 0, 0));

    // Cut inside the header: the missing fields read as zero, a width of 0 cannot be created.
    std::vector<uint8_t> cut = builder.build();
    cut.resize(20);
    EXPECT_EQ(readBmp(cut).fault, BmpFault::CannotCreate);
}

TEST(BmpReader, ReadsWhatTheWriterWrites)
{
    QImage image(8, 5, QImage::Format_RGB32);
    for (int y = 0; y < 5; ++y)
        for (int x = 0; x < 8; ++x)
            image.setPixel(x, y, qRgb(x * 30, y * 50, (x + y) * 10));
    BmpImage bitmap = readBmp(encodeBmp24(image));
    ASSERT_EQ(bitmap.fault, BmpFault::None);
    EXPECT_EQ(bitmap.image, image);
}

} // namespace
} // namespace pulsara
