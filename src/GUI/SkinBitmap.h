#pragma once

#include "GUI/Painter.h"

#include <QImage>

#include <cstdint>
#include <string_view>
#include <vector>

namespace pulsara {

// A bitmap of the skin, kept ready to copy. Drawing never scales: drawRect crops the bitmap to
// the box, drawAt copies it whole.
class SkinBitmap : public Painter {
public:
    // Reads a BMP file. Every failure is fatal ("no bmp", "noread", "not a bitmap file",
    // "can't create bitmap"), so a skin is never used half loaded. Returns 1.
    virtual int load(std::u16string_view path);
    // Replaces the bitmap by a blank one of that size, for off-screen drawing; 0 for a size
    // below 1 x 1.
    int createBlank(DeviceContext*, int32_t width, int32_t height);
    void free();

    int drawPart(int32_t sourceX, int32_t sourceY, int32_t width, int32_t height, int32_t x, int32_t y) override;
    int drawRect(int32_t x, int32_t y, int32_t width, int32_t height) override;
    int drawAt(int32_t x, int32_t y) override;

    int32_t width() const { return width_; }
    int32_t height() const { return height_; }
    bool isEmpty() const { return image_.isNull(); }
    const QImage& image() const { return image_; }
    QImage& image() { return image_; }
    const std::vector<uint8_t>& fileBytes() const { return fileBytes_; }

private:
    QImage image_;
    int32_t width_ = 0;
    int32_t height_ = 0;
    std::vector<uint8_t> fileBytes_;
};

} // namespace pulsara
