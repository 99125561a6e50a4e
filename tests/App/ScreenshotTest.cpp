// The main screen as a user first sees it, compared with reference screenshots: the pattern
// page, the playlist page and live mode, with the demo song, at a desktop size and at the
// smallest window.
//
// When the skin or the screen changes on purpose, regenerate the references with
//   PULSARA_UPDATE_REFERENCES=1 ctest --test-dir build -R Screenshot
// and look at the new tests/App/reference/*.png before committing them. A failing comparison
// leaves the screenshot it took beside the test program, as <name>.actual.png.
#include "DemoApp.h"

#include <QImage>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

constexpr int kChannelTolerance = 12;

enum class View { PatternPage, PlaylistPage, Liveact };

struct Shot {
    View view;
    QSize size;
    const char* name;
};

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

class Screenshot : public ::testing::TestWithParam<Shot> { };

TEST_P(Screenshot, MatchesTheReference)
{
    const Shot& shot = GetParam();
    const QString referencePath = QStringLiteral(PULSARA_SOURCE_DIR "/tests/App/reference/") + shot.name + ".png";
    test::DemoWindow shown(shot.size.width(), shot.size.height());
    if (shot.view == View::PlaylistPage)
        shown.app.showPage(1);
    if (shot.view == View::Liveact)
        shown.app.toggleLiveact();
    QCoreApplication::processEvents();
    QImage actual = shown.window.grab().toImage().convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(actual.size(), shot.size);
    if (qEnvironmentVariableIsSet("PULSARA_UPDATE_REFERENCES")) {
        ASSERT_TRUE(actual.save(referencePath));
        GTEST_SKIP() << "wrote " << referencePath.toStdString();
    }
    QImage expected = QImage(referencePath).convertToFormat(QImage::Format_RGB32);
    ASSERT_EQ(expected.size(), shot.size) << "no reference of this size at " << referencePath.toStdString();
    int differing = differingPixels(actual, expected);
    if (differing > 0)
        actual.save(QString::fromLatin1(shot.name) + ".actual.png");
    EXPECT_EQ(differing, 0) << "pixels differ from " << referencePath.toStdString();
}

INSTANTIATE_TEST_SUITE_P(Views, Screenshot,
    ::testing::Values(Shot { View::PatternPage, { 1200, 780 }, "pattern_1200x780" },
        Shot { View::PlaylistPage, { 1200, 780 }, "playlist_1200x780" }, Shot { View::Liveact, { 1200, 780 }, "liveact_1200x780" },
        Shot { View::PatternPage, { 640, 480 }, "pattern_640x480" }, Shot { View::PlaylistPage, { 640, 480 }, "playlist_640x480" },
        Shot { View::Liveact, { 640, 480 }, "liveact_640x480" }),
    [](const ::testing::TestParamInfo<Shot>& info) { return std::string(info.param.name); });

} // namespace
} // namespace pulsara
