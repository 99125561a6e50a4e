#pragma once

#include <array>
#include <cstddef>
#include <string>
#include <string_view>

namespace pulsara {

// A file path of at most kCapacity UTF-16 units. Every path the program keeps is one of
// these, so an overlong path is caught where it is made and not where it is used.
class PathString {
public:
    static constexpr std::size_t kCapacity = 260;

    PathString() = default;
    PathString(std::u16string_view);

    void clear() { setLength(0); }
    void assign(std::u16string_view);
    void append(std::u16string_view);
    void append(char16_t);
    // Cuts the text at `length` units; a length past the capacity is the fatal "Buffer owerflow".
    void setLength(std::size_t);

    std::size_t length() const { return length_; }
    bool empty() const { return length_ == 0; }
    std::u16string_view view() const { return {units_.data(), length_}; }
    const char16_t* c_str() const { return units_.data(); }
    char16_t operator[](std::size_t index) const { return units_[index]; }
    bool operator==(const PathString& other) const { return view() == other.view(); }

private:
    // One spare unit keeps the text terminated even at full capacity.
    std::array<char16_t, kCapacity + 1> units_ {};
    std::size_t length_ = 0;
};

std::string toUtf8(std::u16string_view);
std::u16string fromUtf8(std::string_view);

} // namespace pulsara
