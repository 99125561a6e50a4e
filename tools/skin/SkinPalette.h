#pragma once

#include <QColor>

// The colours of the default skin: a dark, cool console in which the notes are the bright
// things. Everything the generator draws takes its colour from here.
namespace skin::palette {

inline const QColor kWindow { 0x17, 0x1a, 0x20 };
inline const QColor kWindowDot { 0x20, 0x24, 0x2c };
inline const QColor kPanel { 0x27, 0x2c, 0x35 };
inline const QColor kPanelBorder { 0x3a, 0x41, 0x4e };
inline const QColor kPanelDark { 0x14, 0x17, 0x1c };
inline const QColor kPanelDarkBorder { 0x0c, 0x0e, 0x11 };
inline const QColor kLabel { 0x22, 0x26, 0x2e };
inline const QColor kLabelEdge { 0x31, 0x37, 0x42 };

inline const QColor kCellOffBeat { 0x2b, 0x30, 0x3a };
inline const QColor kCellOnBeat { 0x34, 0x3a, 0x46 };
inline const QColor kCellEdge { 0x1c, 0x20, 0x27 };
inline const QColor kRulerOffBeat { 0x1f, 0x23, 0x2a };
inline const QColor kRulerOnBeat { 0x29, 0x2e, 0x37 };
inline const QColor kRulerTick { 0x6b, 0x74, 0x85 };

// One colour per row, in the order rows cycle through them.
inline const QColor kRowColours[4] = {
    { 0xf5, 0xa6, 0x23 }, // amber
    { 0x2e, 0xc4, 0xb6 }, // teal
    { 0x9b, 0x7b, 0xf0 }, // violet
    { 0xef, 0x5b, 0x6c }, // coral
};
// The playlist's patterns share one colour family, so a song reads as blocks.
inline const QColor kPlaylistColours[4] = {
    { 0x4c, 0x9a, 0xf0 },
    { 0x3f, 0xc1, 0x8a },
    { 0xe8, 0xc1, 0x3a },
    { 0xd9, 0x6b, 0xd0 },
};

inline const QColor kText { 0xdc, 0xe1, 0xea };
inline const QColor kTextDim { 0x8a, 0x93, 0xa3 };
inline const QColor kAccent { 0x2e, 0xc4, 0xb6 };
inline const QColor kPlay { 0x4c, 0xd9, 0x64 };
inline const QColor kMeterGreen { 0x4c, 0xd9, 0x64 };
inline const QColor kMeterYellow { 0xf5, 0xc5, 0x23 };
inline const QColor kMeterRed { 0xef, 0x4b, 0x4b };
inline const QColor kMeterCpu { 0x4c, 0x9a, 0xf0 };
inline const QColor kMeterOff { 0x24, 0x29, 0x31 };
inline const QColor kButtonFace { 0x30, 0x36, 0x41 };
inline const QColor kButtonPressed { 0x1d, 0x4f, 0x4c };
inline const QColor kKeyWhite { 0xe6, 0xe9, 0xee };
inline const QColor kKeyBlack { 0x1d, 0x20, 0x26 };

} // namespace skin::palette
