#pragma once

#include "GUI/Element.h"

#include <QFont>

#include <functional>
#include <string>

namespace pulsara {

class Skin;
class Song;

// Which of the song's patterns the pattern page edits, always in view: its number and name
// between two arrows. The arrows and the wheel step through the patterns; a tap on the name
// lists them all in a pop-up menu.
class PatternSelector : public Element {
public:
    static constexpr uint32_t kFirstPatternCommand = 41000;

    PatternSelector(Skin&, const Song&);

    void setPattern(uint32_t);
    uint32_t pattern() const { return pattern_; }
    // "01 Intro", or "01" for a pattern without a name.
    std::u16string text() const;

    std::function<void(uint32_t pattern)> onSelect;

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;
    int mouseWheel(int32_t x, int32_t y, int32_t delta, uint32_t keys) override;

private:
    void select(int32_t pattern);
    int32_t arrowWidth() const { return rect_.height; }

    Skin& skin_;
    const Song& song_;
    uint32_t pattern_ = 0;
    QFont font_;
};

} // namespace pulsara
