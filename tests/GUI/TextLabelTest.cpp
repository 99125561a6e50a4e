#include "GUI/TextLabel.h"
#include "QtTestApplication.h"

#include <QImage>
#include <QPainter>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

// The number of pixels tinted by the label's colour inside and outside its rectangle.
std::pair<int, int> greenInkOf(TextLabel& label)
{
    QImage image(100, 40, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter dc(&image);
    label.paint(&dc, 0);
    dc.end();
    int inside = 0, outside = 0;
    for (int y = 0; y < image.height(); ++y)
        for (int x = 0; x < image.width(); ++x)
            if (qGreen(image.pixel(x, y)) > 0 && qRed(image.pixel(x, y)) == 0 && qBlue(image.pixel(x, y)) == 0)
                (label.rect()->contains(x, y) ? inside : outside)++;
    return { inside, outside };
}

TEST(TextLabel, DrawsItsTextInItsColourInsideItsRectangle)
{
    test::testApplication();
    TextLabel label(u"Volume");
    label.setColor(Qt::green);
    label.layout({ 10, 10, 60, 20 });
    auto [inside, outside] = greenInkOf(label);
    EXPECT_GT(inside, 10);
    EXPECT_EQ(outside, 0);

    label.paint(nullptr, 2); // not changed: nothing to draw, not even a context needed
    label.setText(u"");
    EXPECT_TRUE(label.isDirty());
    EXPECT_EQ(greenInkOf(label).first, 0);
}

} // namespace
} // namespace pulsara
