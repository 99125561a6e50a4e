#include "SkinArt.h"

#include "SkinPalette.h"

#include <QLinearGradient>
#include <QPainter>
#include <QPainterPath>

#include <functional>

namespace skin {

using namespace palette;

namespace {

QImage blank(int width, int height, QColor fill)
{
    QImage image(width, height, QImage::Format_RGB32);
    image.fill(fill);
    return image;
}

QImage frame(QColor fill, QColor border)
{
    QImage image = blank(kFrameSize, kFrameSize, fill);
    QPainter painter(&image);
    painter.setPen(border);
    painter.drawRect(0, 0, kFrameSize - 1, kFrameSize - 1);
    return image;
}

// A rounded face with a soft top-to-bottom shade, the base of every button.
void drawFace(QPainter& painter, QRectF box, QColor face, QColor border)
{
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient shade(box.topLeft(), box.bottomLeft());
    shade.setColorAt(0, face.lighter(118));
    shade.setColorAt(1, face.darker(112));
    painter.setBrush(shade);
    painter.setPen(QPen(border, 1));
    painter.drawRoundedRect(box.adjusted(0.5, 0.5, -0.5, -0.5), 5, 5);
}

// Two states side by side, each drawn by `drawState(painter, box, pressed)` on the window colour.
QImage twoStates(int stateWidth, int height, const std::function<void(QPainter&, QRectF, bool)>& drawState)
{
    QImage image = blank(stateWidth * 2, height, kWindow);
    QPainter painter(&image);
    for (int state = 0; state < 2; ++state)
        drawState(painter, QRectF(state * stateWidth + 2, 2, stateWidth - 4, height - 4), state == 1);
    return image;
}

void drawButtonFace(QPainter& painter, QRectF box, bool pressed)
{
    drawFace(painter, box, pressed ? kButtonPressed : kButtonFace, pressed ? kAccent : kPanelBorder);
}

QImage meter(const std::function<QColor(int segment)>& litColour)
{
    QImage image = blank(kMeterWidth, kMeterBarHeight * 2, kPanelDark);
    QPainter painter(&image);
    const int pitch = kMeterWidth / kMeterSegments;
    for (int segment = 0; segment < kMeterSegments; ++segment) {
        QRect unlit(segment * pitch, 1, pitch - 1, kMeterBarHeight - 2);
        painter.fillRect(unlit, kMeterOff);
        painter.fillRect(unlit.translated(0, kMeterBarHeight), litColour(segment));
    }
    return image;
}

// One cell image: a rounded pad inset in its cell, with a small gloss when it holds a note.
void drawCell(QPainter& painter, int index, QColor pad, bool lit)
{
    QRectF cell(index * kCellWidth, 0, kCellWidth, kCellHeight);
    painter.fillRect(cell, kCellEdge);
    QRectF box = cell.adjusted(2, 2, -2, -2);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    if (lit) {
        QLinearGradient shade(box.topLeft(), box.bottomLeft());
        shade.setColorAt(0, pad.lighter(125));
        shade.setColorAt(1, pad.darker(115));
        painter.setBrush(shade);
    } else {
        painter.setBrush(pad);
    }
    painter.drawRoundedRect(box, 3, 3);
    if (lit) {
        painter.setBrush(QColor(255, 255, 255, 60));
        painter.drawRoundedRect(box.adjusted(2, 1.5, -2, -box.height() / 2), 2, 2);
    }
}

void drawRulerCell(QPainter& painter, int index, QColor fill)
{
    QRect cell(index * kCellWidth, 0, kCellWidth, kCellHeight);
    painter.fillRect(cell, fill);
    painter.fillRect(cell.x(), cell.bottom() - 6, 1, 7, kRulerTick);
    painter.fillRect(cell.x(), cell.bottom(), cell.width(), 1, kPanelDarkBorder);
}

QImage steps(const QColor (&colours)[kStepColours])
{
    QImage image = blank(kCellWidth * (kStepColours + 2) * 2, kCellHeight, kCellEdge);
    QPainter painter(&image);
    drawRulerCell(painter, 0, kRulerOffBeat);
    drawRulerCell(painter, 1, kRulerOnBeat);
    drawCell(painter, 2, kCellOffBeat, false);
    drawCell(painter, 3, kCellOnBeat, false);
    for (int colour = 0; colour < kStepColours; ++colour) {
        drawCell(painter, 4 + colour * 2, colours[colour], true);
        drawCell(painter, 5 + colour * 2, colours[colour].lighter(112), true);
    }
    return image;
}

void drawKeyboard(QPainter& painter, int top, bool lit)
{
    static const bool hasBlackAfter[7] = { true, true, false, true, true, true, false };
    painter.setRenderHint(QPainter::Antialiasing, false);
    for (int key = 0; key < 7; ++key) {
        QRect white(key * kKeyWidth, top, kKeyWidth - 1, kKeyHeight - 1);
        painter.fillRect(white, lit ? kAccent.lighter(140) : kKeyWhite);
        painter.fillRect(white.x(), white.bottom() - 3, white.width(), 4, lit ? kAccent : QColor(0xc4, 0xc9, 0xd2));
    }
    for (int key = 0; key < 7; ++key) {
        if (!hasBlackAfter[key])
            continue;
        QRect black(key * kKeyWidth + kKeyWidth * 2 / 3, top, kKeyWidth * 2 / 3, kKeyHeight * 3 / 5);
        painter.fillRect(black, lit ? kAccent.darker(130) : kKeyBlack);
    }
}

} // namespace

QImage drawPanel()
{
    return frame(kPanel, kPanelBorder);
}

QImage drawPanelDark()
{
    return frame(kPanelDark, kPanelDarkBorder);
}

QImage drawLabelBackground()
{
    return frame(kLabel, kLabelEdge);
}

QImage drawBackground()
{
    QImage image = blank(64, 64, kWindow);
    for (int y = 0; y < 64; y += 8)
        for (int x = (y / 8 % 2) * 4; x < 64; x += 8)
            image.setPixelColor(x, y, kWindowDot);
    return image;
}

QImage drawPlayButton()
{
    return twoStates(kPlayWidth, kButtonHeight, [](QPainter& painter, QRectF box, bool pressed) {
        drawButtonFace(painter, box, pressed);
        QPointF centre = box.center();
        QPainterPath triangle;
        triangle.moveTo(centre + QPointF(-6, -9));
        triangle.lineTo(centre + QPointF(10, 0));
        triangle.lineTo(centre + QPointF(-6, 9));
        triangle.closeSubpath();
        painter.setPen(Qt::NoPen);
        painter.setBrush(pressed ? kPlay : kText);
        painter.drawPath(triangle);
    });
}

QImage drawPencilButton()
{
    return twoStates(kModeButtonWidth, kButtonHeight, [](QPainter& painter, QRectF box, bool pressed) {
        drawButtonFace(painter, box, pressed);
        painter.save();
        painter.translate(box.center());
        painter.rotate(-45);
        painter.setPen(Qt::NoPen);
        painter.setBrush(pressed ? kAccent.lighter(130) : kText);
        painter.drawRect(QRectF(-9, -3, 15, 6));
        QPainterPath tip;
        tip.moveTo(6, -3);
        tip.lineTo(11, 0);
        tip.lineTo(6, 3);
        tip.closeSubpath();
        painter.drawPath(tip);
        painter.setBrush(pressed ? kAccent : kTextDim);
        painter.drawRect(QRectF(-12, -3, 3, 6));
        painter.restore();
    });
}

QImage drawHandButton()
{
    return twoStates(kModeButtonWidth, kButtonHeight, [](QPainter& painter, QRectF box, bool pressed) {
        drawButtonFace(painter, box, pressed);
        QPointF c = box.center();
        painter.setPen(Qt::NoPen);
        painter.setBrush(pressed ? kAccent.lighter(130) : kText);
        // Four fingers, a thumb and the palm.
        const double fingerTops[4] = { -9, -11, -10, -7 };
        for (int finger = 0; finger < 4; ++finger)
            painter.drawRoundedRect(QRectF(c.x() - 7 + finger * 3.6, c.y() + fingerTops[finger], 3, 10), 1.5, 1.5);
        painter.drawRoundedRect(QRectF(c.x() - 7, c.y() - 1, 14, 10), 3.5, 3.5);
        painter.save();
        painter.translate(c + QPointF(-7, 3));
        painter.rotate(-40);
        painter.drawRoundedRect(QRectF(-8, -1.5, 9, 3.2), 1.5, 1.5);
        painter.restore();
    });
}

QImage drawKnob()
{
    return twoStates(kKnobSize, kKnobSize, [](QPainter& painter, QRectF box, bool pressed) {
        painter.setRenderHint(QPainter::Antialiasing);
        QRectF ball = box.adjusted(-1, -1, 1, 1);
        QLinearGradient shade(ball.topLeft(), ball.bottomLeft());
        shade.setColorAt(0, pressed ? kAccent.lighter(130) : QColor(0xee, 0xf1, 0xf5));
        shade.setColorAt(1, pressed ? kAccent.darker(120) : QColor(0xa9, 0xb0, 0xbc));
        painter.setBrush(shade);
        painter.setPen(QPen(kPanelDarkBorder, 1));
        painter.drawEllipse(ball);
        painter.setBrush(pressed ? kAccent.darker(150) : kPanel);
        painter.setPen(Qt::NoPen);
        painter.drawEllipse(ball.center(), 2.5, 2.5);
    });
}

QImage drawClipLamp()
{
    QImage image = blank(kLampWidth * 2, kMeterBarHeight * 2, kPanelDark);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    for (int state = 0; state < 2; ++state) {
        QRectF lamp(state * kLampWidth + 2, 3, kLampWidth - 4, kMeterBarHeight * 2 - 6);
        painter.setPen(QPen(kPanelDarkBorder, 1));
        painter.setBrush(state == 1 ? kMeterRed : kMeterRed.darker(400));
        painter.drawRoundedRect(lamp, 2, 2);
    }
    return image;
}

QImage drawLevelMeter()
{
    return meter([](int segment) {
        if (segment >= kMeterSegments - 2)
            return kMeterRed;
        if (segment >= kMeterSegments * 3 / 4)
            return kMeterYellow;
        return kMeterGreen;
    });
}

QImage drawCpuMeter()
{
    return meter([](int segment) { return segment >= kMeterSegments * 4 / 5 ? kMeterRed : kMeterCpu; });
}

QImage drawPatternSteps()
{
    return steps(kRowColours);
}

QImage drawPlaylistSteps()
{
    return steps(kPlaylistColours);
}

QImage drawPiano()
{
    QImage image = blank(kKeyWidth * 7, kKeyHeight * 2, kPanelDark);
    QPainter painter(&image);
    drawKeyboard(painter, 0, false);
    drawKeyboard(painter, kKeyHeight, true);
    return image;
}

QImage drawOctaves()
{
    QImage image = blank(kOctaveCell * kOctaves, kOctaveCell * 2, kPanelDark);
    QPainter painter(&image);
    QFont font("Liberation Sans");
    font.setPixelSize(13);
    font.setBold(true);
    painter.setFont(font);
    for (int row = 0; row < 2; ++row) {
        for (int octave = 0; octave < kOctaves; ++octave) {
            QRectF cell(octave * kOctaveCell + 1, row * kOctaveCell + 1, kOctaveCell - 2, kOctaveCell - 2);
            drawFace(painter, cell, row == 1 ? kButtonPressed : kButtonFace, row == 1 ? kAccent : kPanelBorder);
            painter.setPen(row == 1 ? kAccent.lighter(140) : kText);
            painter.drawText(cell, Qt::AlignCenter, QString::number(octave + 1));
        }
    }
    return image;
}

} // namespace skin
