#include "GUI/BitmapButton.h"
#include "GUI/SkinBitmap.h"

#include <QPainter>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

// Released state red, pressed state blue.
SkinBitmap twoStateBitmap()
{
    SkinBitmap bitmap;
    bitmap.createBlank(nullptr, 20, 6);
    QPainter painter(&bitmap.image());
    painter.fillRect(0, 0, 10, 6, Qt::red);
    painter.fillRect(10, 0, 10, 6, Qt::blue);
    return bitmap;
}

QRgb drawnColour(BitmapButton& button)
{
    QImage image(40, 40, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter dc(&image);
    button.paint(&dc, 0);
    dc.end();
    return image.pixel(button.rect()->x + 5, button.rect()->y + 3);
}

TEST(BitmapButton, IsOneStateLargeAndDrawsTheHalfOfItsState)
{
    SkinBitmap bitmap = twoStateBitmap();
    BitmapButton button;
    button.setBitmap(&bitmap);
    button.place(4, 7);
    EXPECT_EQ(*button.rect(), (ElemRect { 4, 7, 10, 6 }));
    EXPECT_EQ(drawnColour(button), qRgb(255, 0, 0));
    button.setPressed(true);
    EXPECT_EQ(drawnColour(button), qRgb(0, 0, 255));
}

TEST(BitmapButton, KindsAnswerTapsDifferently)
{
    SkinBitmap bitmap = twoStateBitmap();
    struct Case {
        BitmapButton::Kind kind;
        bool afterOneTap, afterTwoTaps;
        int changes;
    };
    const Case cases[] = {
        { BitmapButton::Kind::Toggle, true, false, 2 },
        { BitmapButton::Kind::Latch, true, true, 1 },
        { BitmapButton::Kind::Indicator, false, false, 0 },
    };
    for (const Case& c : cases) {
        BitmapButton button(c.kind);
        button.setBitmap(&bitmap);
        int changes = 0;
        button.onChange = [&](bool) { ++changes; };
        button.stylusDown(0, 1, 1);
        EXPECT_EQ(button.isPressed(), c.afterOneTap);
        button.stylusDown(0, 1, 1);
        EXPECT_EQ(button.isPressed(), c.afterTwoTaps);
        EXPECT_EQ(changes, c.changes);
    }
}

} // namespace
} // namespace pulsara
