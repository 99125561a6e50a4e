#include "GUI/SkinBitmap.h"

#include "GUI/BmpReader.h"
#include "base/ErrorReporter.h"
#include "base/Path.h"
#include "base/mem.h"

#include <QPainter>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>

namespace pulsara {

namespace {

constexpr const char* kSource = "GUI/elem";

int reportBitmapFault(int line, std::u16string_view message)
{
    reportError(&errorContext(), kFatal, kSource, line, message);
    return 0;
}

} // namespace

int SkinBitmap::load(std::u16string_view path)
{
    free();
    fileBytes_.clear();
    std::error_code error;
    const std::string native = nativePath(path);
    // Only a regular file opens; a folder of that name is as missing as no file at all.
    std::ifstream file;
    if (std::filesystem::is_regular_file(native, error))
        file.open(native, std::ios::binary);
    if (!file.is_open()) {
        std::string line = "no bitmap file: " + toUtf8(path) + "\n\r\n";
        std::fputs(line.c_str(), stderr);
        return reportBitmapFault(65, u"no bmp");
    }
    const uintmax_t size = std::filesystem::file_size(native, error);
    // A file too large to hold reports the memory message, then counts as nothing read.
    if (error || size == 0 || !tryResize(fileBytes_, static_cast<size_t>(size)))
        return reportBitmapFault(72, u"noread");
    file.read(reinterpret_cast<char*>(fileBytes_.data()), static_cast<std::streamsize>(size));
    if (file.gcount() <= 0)
        return reportBitmapFault(72, u"noread");
    fileBytes_.resize(static_cast<size_t>(file.gcount()));

    BmpImage bitmap = readBmp(fileBytes_);
    switch (bitmap.fault) {
    case BmpFault::NoRead:
        return reportBitmapFault(72, u"noread");
    case BmpFault::NotBitmap:
        return reportBitmapFault(75, u"not a bitmap file");
    case BmpFault::CannotCreate:
        return reportBitmapFault(92, u"can't create bitmap");
    case BmpFault::None:
        break;
    }
    image_ = std::move(bitmap.image);
    width_ = image_.width();
    height_ = image_.height();
    return 1;
}

int SkinBitmap::createBlank(DeviceContext*, int32_t width, int32_t height)
{
    free();
    if (width < 1 || height < 1)
        return 0;
    image_ = QImage(width, height, QImage::Format_RGB32);
    if (image_.isNull())
        return 0;
    image_.fill(Qt::black);
    width_ = width;
    height_ = height;
    return 1;
}

void SkinBitmap::free()
{
    image_ = QImage();
    width_ = 0;
    height_ = 0;
}

int SkinBitmap::drawPart(int32_t sourceX, int32_t sourceY, int32_t width, int32_t height, int32_t x, int32_t y)
{
    if (!dc_ || image_.isNull() || width <= 0 || height <= 0)
        return 0;
    if (dc_->compositionMode() != QPainter::CompositionMode_Source)
        dc_->setCompositionMode(QPainter::CompositionMode_Source);
    // Qt copies only the part of the source rectangle that lies inside the bitmap; where the
    // piece reaches past it, the destination keeps what it had.
    dc_->drawImage(QPoint(x, y), image_, QRect(sourceX, sourceY, width, height));
    return 1;
}

int SkinBitmap::drawRect(int32_t x, int32_t y, int32_t width, int32_t height)
{
    return drawPart(0, 0, width, height, x, y);
}

int SkinBitmap::drawAt(int32_t x, int32_t y)
{
    return drawPart(0, 0, width_, height_, x, y);
}

} // namespace pulsara
