#include "GUI/BmpWriter.h"
#include "GUI/Skin.h"
#include "TestImages.h"

#include <QDir>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace pulsara {
namespace {

// <folder>/Skins/Test/ with every file of a skin, each a small plain bitmap, minus `missing`.
std::u16string makeSkin(const QTemporaryDir& folder, const std::string& missing = {})
{
    QDir(folder.path()).mkpath("Skins/Test");
    QImage image(48, 8, QImage::Format_RGB32);
    image.fill(qRgb(30, 40, 50));
    for (std::string file : { "panel.bmp", "panelD.bmp", "panelBckD.bmp", "back.bmp", "level.bmp", "draw.bmp", "hand.bmp", "play.bmp",
             "vol.bmp", "cpu.bmp", "peak.bmp", "piano.bmp", "octave.bmp", "stepsPlst.bmp", "stepsPat.bmp" })
        if (file != missing)
            test::writeFile(folder.filePath(QString::fromStdString("Skins/Test/" + file)), encodeBmp24(image));
    return (folder.path() + "/").toStdU16String();
}

struct SkinDeathTest : testing::Test { void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); } };

TEST(Skin, LoadsEveryFileAndSetsUpFramesAndSteps)
{
    QTemporaryDir folder;
    Skin skin;
    skin.setInstallDir(makeSkin(folder));
    skin.setName(u"Test");
    EXPECT_EQ(skin.load(), 1);
    EXPECT_EQ(skin.panel.corner(), 1);
    EXPECT_EQ(skin.panelBckD.corner(), 1);
    EXPECT_EQ(skin.back.corner(), 0);
    EXPECT_EQ(skin.meterBitmapsLoaded, 3);
    // The steps' images, four colours of a cell each, are in the screenshots.
    EXPECT_EQ(skin.stepsPat.owner(), &skin);
    EXPECT_EQ(skin.stepsPlst.panelD(), &skin.panelD);
    EXPECT_EQ(skin.stepsPat.cellHeight(), 8);
    EXPECT_EQ(skin.panel2.image(), skin.panel.image());
    EXPECT_EQ(skin.panel.fileBytes().size(), 54u + 48 * 8 * 3) << "the file's header and 24-bit rows";
}

TEST_F(SkinDeathTest, AMissingLastFileEndsTheProgramWithNoBmpAfterTheOthersLoaded)
{
    QTemporaryDir folder;
    std::u16string install = makeSkin(folder, "stepsPat.bmp");
    Skin skin;
    skin.setInstallDir(install);
    skin.setName(u"Test");
    EXPECT_EXIT(skin.load(), testing::ExitedWithCode(255),
        "^no bitmap file: [^\n]*/Skins/Test/stepsPat.bmp\n\r\npulsara: FATAL ERROR: no bmp\n$");
}

TEST_F(SkinDeathTest, EveryBitmapRefusalIsFatalWithItsMessage)
{
    QTemporaryDir folder;
    test::BmpFileBuilder badHeader;
    badHeader.bitsPerPixel = 7;
    std::vector<uint8_t> notBitmap = badHeader.build();
    notBitmap[1] = 'A';
    test::writeFile(folder.filePath("empty.bmp"), {});
    QDir(folder.path()).mkdir("folder.bmp");
    test::writeFile(folder.filePath("ba.bmp"), notBitmap);
    test::writeFile(folder.filePath("bad.bmp"), badHeader.build());
    const std::pair<const char*, std::string> cases[] = {
        { "missing.bmp", "no bmp" },
        { "folder.bmp", "no bmp" },
        { "empty.bmp", "noread" },
        { "ba.bmp", "not a bitmap file" },
        { "bad.bmp", "can't create bitmap" },
    };
    for (const auto& [file, message] : cases) {
        SkinBitmap bitmap;
        EXPECT_EXIT(bitmap.load(folder.filePath(file).toStdU16String()), testing::ExitedWithCode(255),
            "pulsara: FATAL ERROR: " + message + "\n$")
            << file;
    }
}

} // namespace
} // namespace pulsara
