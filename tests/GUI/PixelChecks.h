#pragma once

#include <QImage>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace pulsara::test {

struct PixelAt {
    int x, y;
    QRgb colour;
};

inline void expectPixels(const QImage& image, const std::vector<PixelAt>& pixels, const std::string& what = {})
{
    for (const PixelAt& p : pixels)
        EXPECT_EQ(image.pixel(p.x, p.y), p.colour) << what << " at " << p.x << "," << p.y;
}

} // namespace pulsara::test
