// The window as a user first sees it, compared with reference screenshots.
//
// When the skin or the screen changes on purpose, regenerate the references with
//   PULSARA_UPDATE_REFERENCES=1 ctest --test-dir build -R WindowScreenshot
// and look at the new tests/GUI/reference/*.png before committing them. A failing comparison
// leaves the screenshot it took beside the test program, as window_<width>x<height>.actual.png.
#include "App/MainWindow.h"
#include "App/StandInScreen.h"
#include "GUI/QtTestApplication.h"
#include "GUI/Skin.h"

#include <QImage>
#include <gtest/gtest.h>

#include <cstdlib>

namespace pulsara {
namespace {

constexpr int kChannelTolerance = 12;

QImage screenshot(QSize size)
{
    test::testApplication();
    theSkin().setInstallDir(u"" PULSARA_SHARE_DIR "/");
    theSkin().load();
    StandInScreen screen(theSkin());
    MainWindow window(screen);
    window.resize(size);
    window.show();
    test::runEventLoopFor(100);
    return window.grab().toImage().convertToFormat(QImage::Format_RGB32);
}

// The number of pixels with a channel that differs by more than the tolerance.
int differingPixels(const QImage& actual, const QImage& expected)
{
    int differing = 0;
    auto far = [](int a, int e) { return std::abs(a - e) > kChannelTolerance; };
    for (int y = 0; y < actual.height(); ++y)
        for (int x = 0; x < actual.width(); ++x) {
            QRgb a = actual.pixel(x, y), e = expected.pixel(x, y);
            differing += far(qRed(a), qRed(e)) || far(qGreen(a), qGreen(e)) || far(qBlue(a), qBlue(e));
        }
    return differing;
}

class WindowScreenshot : public testing::TestWithParam<QSize> { };

TEST_P(WindowScreenshot, MatchesTheReference)
{
    const QSize size = GetParam();
    const QString name = QStringLiteral("window_%1x%2").arg(size.width()).arg(size.height());
    const QString referencePath = QStringLiteral(PULSARA_SOURCE_DIR "/tests/GUI/reference/") + name + ".png";
    QImage actual = screenshot(size);
    ASSERT_EQ(actual.size(), size);
    if (qEnvironmentVariableIsSet("PULSARA_UPDATE_REFERENCES")) {
        ASSERT_TRUE(actual.save(referencePath));
        GTEST_SKIP() << "wrote " << referencePath.toStdString();
    }
    QImage expected = QImage(referencePath).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(expected.size(), size) << "no reference of this size at " << referencePath.toStdString();
    int differing = differingPixels(actual, expected);
    if (differing > 0)
        actual.save(name + ".actual.png");
    EXPECT_EQ(differing, 0) << "pixels differ from " << referencePath.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Sizes, WindowScreenshot, testing::Values(QSize(800, 600), QSize(480, 360)),
    [](const testing::TestParamInfo<QSize>& info) {
        return std::to_string(info.param.width()) + "x" + std::to_string(info.param.height());
    });

} // namespace
} // namespace pulsara
