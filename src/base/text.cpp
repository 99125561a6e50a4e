#include "base/text.h"

#include "base/ErrorReporter.h"

#include <algorithm>

namespace pulsara {

namespace {
constexpr const char* kSource = "text";
constexpr int kOverflowLine = 114;
}

PathString::PathString(std::u16string_view text)
{
    assign(text);
}

void PathString::assign(std::u16string_view text)
{
    if (text.size() > kCapacity) {
        setLength(text.size());
        return;
    }
    // The text may be a view of this very buffer; copying forwards from the start is safe then.
    std::copy(text.begin(), text.end(), units_.begin());
    setLength(text.size());
}

void PathString::append(std::u16string_view text)
{
    std::size_t oldLength = length_;
    if (oldLength + text.size() > kCapacity) {
        setLength(oldLength + text.size());
        return;
    }
    std::copy(text.begin(), text.end(), units_.begin() + static_cast<std::ptrdiff_t>(oldLength));
    setLength(oldLength + text.size());
}

void PathString::append(char16_t unit)
{
    append(std::u16string_view(&unit, 1));
}

void PathString::setLength(std::size_t length)
{
    if (length > kCapacity) {
        reportError(&errorContext(), kFatal, kSource, kOverflowLine, u"Buffer owerflow");
        return;
    }
    length_ = length;
    units_[length_] = 0;
}

std::string toUtf8(std::u16string_view text)
{
    std::string out;
    out.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        char32_t c = text[i];
        if (c >= 0xD800 && c < 0xDC00 && i + 1 < text.size() && text[i + 1] >= 0xDC00 && text[i + 1] < 0xE000) {
            c = 0x10000 + ((c - 0xD800) << 10) + (text[i + 1] - 0xDC00);
            ++i;
        } else if (c >= 0xD800 && c < 0xE000) {
            c = 0xFFFD; // a lone surrogate cannot be written as UTF-8
        }
        if (c < 0x80) {
            out += static_cast<char>(c);
        } else if (c < 0x800) {
            out += static_cast<char>(0xC0 | (c >> 6));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else if (c < 0x10000) {
            out += static_cast<char>(0xE0 | (c >> 12));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        } else {
            out += static_cast<char>(0xF0 | (c >> 18));
            out += static_cast<char>(0x80 | ((c >> 12) & 0x3F));
            out += static_cast<char>(0x80 | ((c >> 6) & 0x3F));
            out += static_cast<char>(0x80 | (c & 0x3F));
        }
    }
    return out;
}

std::u16string fromUtf8(std::string_view text)
{
    std::u16string out;
    out.reserve(text.size());
    std::size_t i = 0;
    while (i < text.size()) {
        auto byte = static_cast<unsigned char>(text[i]);
        char32_t c = 0xFFFD;
        std::size_t extra = 0;
        if (byte < 0x80) {
            c = byte;
        } else if ((byte & 0xE0) == 0xC0) {
            c = byte & 0x1F;
            extra = 1;
        } else if ((byte & 0xF0) == 0xE0) {
            c = byte & 0x0F;
            extra = 2;
        } else if ((byte & 0xF8) == 0xF0) {
            c = byte & 0x07;
            extra = 3;
        }
        ++i;
        for (std::size_t k = 0; k < extra; ++k, ++i) {
            if (i >= text.size() || (static_cast<unsigned char>(text[i]) & 0xC0) != 0x80) {
                c = 0xFFFD;
                break;
            }
            c = (c << 6) | (static_cast<unsigned char>(text[i]) & 0x3F);
        }
        if (byte >= 0x80 && extra == 0)
            c = 0xFFFD;
        if (c >= 0x10000 && c < 0x110000) {
            c -= 0x10000;
            out += static_cast<char16_t>(0xD800 + (c >> 10));
            out += static_cast<char16_t>(0xDC00 + (c & 0x3FF));
        } else {
            out += static_cast<char16_t>(c > 0x10FFFF ? 0xFFFD : c);
        }
    }
    return out;
}

} // namespace pulsara
