#pragma once

#include "GUI/Element.h"

#include <QFont>

#include <array>
#include <functional>
#include <string>
#include <string_view>

namespace pulsara {

class Skin;
class Song;

// A row of live-play pads: one per track from `firstTrack`, each showing its computer key and
// its instrument, lit for a moment when it plays. A tap plays the track, as its key does.
class LiveRow : public Element {
public:
    static constexpr uint32_t kLitMs = 150;

    // `keys` holds one key character per pad.
    LiveRow(Skin&, const Song&, uint32_t firstTrack, std::u16string_view keys);

    // Lights the track's pad, if this row has it, until `untilMs` on the caller's clock.
    void light(int32_t track, uint32_t untilMs);
    // Puts out the pads whose time has passed.
    void tick(uint32_t nowMs);
    bool isLit(int32_t track) const;
    // The pad text: "Q Kick", or the key alone for a track without instrument.
    std::u16string padText(uint32_t pad) const;
    // The track under a point, or -1.
    int32_t trackAt(int32_t x, int32_t y) const;

    std::function<void(int32_t track)> onTrigger;

    int paint(DeviceContext*, uint32_t mode) override;
    int stylusDown(int button, int32_t x, int32_t y) override;

private:
    static constexpr uint32_t kMaxPads = 20;

    ElemRect padRect(uint32_t pad) const;

    Skin& skin_;
    const Song& song_;
    uint32_t firstTrack_;
    std::u16string keys_;
    std::array<uint32_t, kMaxPads> litUntil_ {};
    std::array<bool, kMaxPads> lit_ {};
    QFont font_;
};

} // namespace pulsara
