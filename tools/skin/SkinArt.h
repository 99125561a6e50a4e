#pragma once

#include <QImage>

// The drawings of the default skin, one per file, and the geometry that the program's elements
// rely on. Every bitmap is a multiple of 4 pixels wide, because the program copies BMP rows
// without skipping row padding: 24-bit rows of such widths have none.
//
// Conventions (the elements that draw with these files depend on them):
// - Frames (panel, panelD, panelBckD) are 32 x 32 with a one-pixel border, drawn with corner 1:
//   the 30 x 30 centre is tiled, so it is flat. back.bmp is a 64 x 64 tile drawn with corner 0.
// - Two-state bitmaps hold their states side by side, released on the left and pressed on the
//   right; a button is half its bitmap wide: play.bmp (2 x 56 x 36), draw.bmp and hand.bmp
//   (2 x 44 x 36), vol.bmp (the slider knob, 2 x 18 x 18), peak.bmp (the clip lamp, 2 x 12 x 16).
//   The button height, 36, is the unit height of the window's top rows.
// - Meters (level.bmp, cpu.bmp) are 100 x 16: the unlit bar over the lit bar, 8 rows each, with
//   20 segments of 5 pixels; a meter shows whole segments of the lit bar over the unlit one.
// - Step strips (stepsPat.bmp, stepsPlst.bmp) hold (C + 2) x 2 = 12 cell images of 28 x 16 side
//   by side, C = 4 row colours: 0 and 1 the ruler, 2 and 3 the empty cell, then two per row
//   colour. Of each pair the first is for even beats and the second, lighter, for odd beats.
// - piano.bmp is one octave of 7 white keys of 20 x 40 (140 x 40), the plain keyboard over the
//   same keyboard with every key lit (140 x 80). A black key follows every white key but the
//   third and the seventh, starting two thirds into it, two thirds of a white key wide and three
//   fifths of its height. octave.bmp holds the digits 1 to 8 in cells of 20 x 20, plain over lit
//   (160 x 40).
namespace skin {

constexpr int kFrameSize = 32;
constexpr int kButtonHeight = 36;
constexpr int kPlayWidth = 56;
constexpr int kModeButtonWidth = 44;
constexpr int kKnobSize = 18;
constexpr int kLampWidth = 12;
constexpr int kMeterWidth = 100;
constexpr int kMeterBarHeight = 8;
constexpr int kMeterSegments = 20;
constexpr int kStepColours = 4;
constexpr int kCellWidth = 28;
constexpr int kCellHeight = 16;
constexpr int kKeyWidth = 20;
constexpr int kKeyHeight = 40;
constexpr int kOctaveCell = 20;
constexpr int kOctaves = 8;

QImage drawPanel();
QImage drawPanelDark();
QImage drawLabelBackground();
QImage drawBackground();
QImage drawPlayButton();
QImage drawPencilButton();
QImage drawHandButton();
QImage drawKnob();
QImage drawClipLamp();
QImage drawLevelMeter();
QImage drawCpuMeter();
QImage drawPatternSteps();
QImage drawPlaylistSteps();
QImage drawPiano();
QImage drawOctaves();

} // namespace skin
