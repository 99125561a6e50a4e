#include "GUI/BmpReader.h"
#include "TestImages.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace pulsara {
namespace {

using test::BmpFileBuilder;

TEST(BmpReader, RefusesEmptyFilesFilesWithoutBMAndUncreatableHeaders)
{
    BmpFileBuilder good;
    good.pixels = { 1, 2, 3, 0 };
    auto withHeader = [&](auto change) {
        BmpFileBuilder builder = good;
        change(builder);
        return builder.build();
    };
    std::vector<uint8_t> notBM = good.build(), cutInHeader = good.build();
    notBM[1] = 'A';
    cutInHeader.resize(20); // the missing fields read as zero
    const std::pair<std::vector<uint8_t>, BmpFault> cases[] = {
        { {}, BmpFault::NoRead },
        { { 'B' }, BmpFault::NotBitmap },
        { notBM, BmpFault::NotBitmap },
        { withHeader([](auto& b) { b.width = 0; }), BmpFault::CannotCreate },
        { withHeader([](auto& b) { b.width = -3; }), BmpFault::CannotCreate },
        { withHeader([](auto& b) { b.height = 0; }), BmpFault::CannotCreate },
        { withHeader([](auto& b) { b.bitsPerPixel = 12; }), BmpFault::CannotCreate },
        { withHeader([](auto& b) { b.compression = 1; }), BmpFault::CannotCreate },
        { withHeader([](auto& b) { b.width = b.height = 100000; }), BmpFault::CannotCreate },
        { { 'B', 'M', 0, 0 }, BmpFault::CannotCreate },
        { cutInHeader, BmpFault::CannotCreate },
        { good.build(), BmpFault::None },
    };
    for (size_t i = 0; i < std::size(cases); ++i)
        EXPECT_EQ(readBmp(cases[i].first).fault, cases[i].second) << "case " << i;
}

TEST(BmpReader, DecodesThePixelBytesAsTheyLieInTheFile)
{
    const QRgb black = qRgb(0, 0, 0), red = qRgb(255, 0, 0), green = qRgb(0, 255, 0), blue = qRgb(0, 0, 255);
    struct Case {
        const char* name;
        int32_t width, height;
        uint16_t bits;
        std::vector<uint32_t> palette;
        std::vector<uint8_t> pixels;
        std::vector<test::PixelAt> expected;
    };
    const Case cases[] = {
        { "24 bits bottom-up", 4, 2, 24, {}, { 255, 0, 0, 0, 255, 0, 0, 0, 255, 255, 255, 255, 0, 0, 0, 128, 128, 128, 1, 2, 3, 4, 5, 6 },
            { { 0, 1, blue }, { 1, 1, green }, { 2, 1, red }, { 1, 0, qRgb(128, 128, 128) }, { 3, 0, qRgb(6, 5, 4) } } },
        // The copy count takes the low 16 bits of the height, far more than the file holds.
        { "negative height is top-down", 4, -2, 24, {}, { 0, 0, 255, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0 },
            { { 0, 0, red }, { 0, 1, black } } },
        { "8 bits through the colour table", 4, 1, 8, { 0x000000, 0xFF0000, 0x00FF00, 0x0000FF }, { 3, 2, 1, 0 },
            { { 0, 0, blue }, { 1, 0, green }, { 2, 0, red }, { 3, 0, black } } },
        // Rows are copied without skipping padding: (bits x height x width) / 8 = 18 bytes go
        // straight into rows of 12. A padded file keeps its rows but loses its last pixel...
        { "padded odd width", 3, 2, 24, {}, { 10, 10, 10, 20, 20, 20, 30, 30, 30, 0, 0, 0, 40, 40, 40, 50, 50, 50, 60, 60, 60, 0, 0, 0 },
            { { 2, 1, qRgb(30, 30, 30) }, { 1, 0, qRgb(50, 50, 50) }, { 2, 0, black } } },
        // ... and an unpadded one starts its top row one pixel late.
        { "unpadded odd width", 3, 2, 24, {}, { 10, 10, 10, 20, 20, 20, 30, 30, 30, 40, 40, 40, 50, 50, 50, 60, 60, 60 },
            { { 2, 1, qRgb(30, 30, 30) }, { 0, 0, qRgb(50, 50, 50) }, { 1, 0, qRgb(60, 60, 60) }, { 2, 0, black } } },
        { "shorter than its header claims", 4, 4, 24, {}, { 0, 0, 255 }, { { 0, 3, red }, { 1, 3, black }, { 3, 0, black } } },
    };
    for (const Case& c : cases) {
        BmpFileBuilder builder { c.width, c.height, c.bits, 0, c.palette, c.pixels };
        BmpImage bitmap = readBmp(builder.build());
        ASSERT_EQ(bitmap.fault, BmpFault::None) << c.name;
        EXPECT_EQ(bitmap.image.size(), QSize(c.width, std::abs(c.height))) << c.name;
        test::expectPixels(bitmap.image, c.expected, c.name);
    }
}

} // namespace
} // namespace pulsara
