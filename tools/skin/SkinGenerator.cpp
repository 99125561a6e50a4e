// Draws the default skin into the folder given on the command line, one BMP file per bitmap
// that the program's skin loads. Run by the build; the conventions are in SkinArt.h.
#include "SkinArt.h"

#include "GUI/BmpWriter.h"

#include <QDir>
#include <QGuiApplication>

#include <cstdio>
#include <fstream>

namespace {

bool writeBmp(const QDir& folder, const char* name, const QImage& image)
{
    std::vector<uint8_t> bytes = pulsara::encodeBmp24(image);
    std::ofstream file(folder.filePath(name).toStdString(), std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), std::streamsize(bytes.size()));
    if (!file) {
        std::fprintf(stderr, "pulsara_skin: can't write %s\n", name);
        return false;
    }
    return true;
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: %s SKIN_FOLDER\n", argv[0]);
        return 2;
    }
    // The text on the octave keys needs the font machinery of a GUI application.
    QGuiApplication application(argc, argv);
    QDir folder(QString::fromLocal8Bit(argv[1]));
    if (!folder.mkpath(".")) {
        std::fprintf(stderr, "pulsara_skin: can't create %s\n", argv[1]);
        return 1;
    }
    struct File {
        const char* name;
        QImage (*draw)();
    };
    const File files[] = {
        { "panel.bmp", skin::drawPanel },
        { "panelD.bmp", skin::drawPanelDark },
        { "panelBckD.bmp", skin::drawLabelBackground },
        { "back.bmp", skin::drawBackground },
        { "level.bmp", skin::drawLevelMeter },
        { "play.bmp", skin::drawPlayButton },
        { "vol.bmp", skin::drawKnob },
        { "draw.bmp", skin::drawPencilButton },
        { "hand.bmp", skin::drawHandButton },
        { "piano.bmp", skin::drawPiano },
        { "octave.bmp", skin::drawOctaves },
        { "cpu.bmp", skin::drawCpuMeter },
        { "peak.bmp", skin::drawClipLamp },
        { "stepsPlst.bmp", skin::drawPlaylistSteps },
        { "stepsPat.bmp", skin::drawPatternSteps },
    };
    for (const File& file : files) {
        QImage image = file.draw();
        if (image.width() % 4 != 0) {
            std::fprintf(stderr, "pulsara_skin: %s is %d wide, not a multiple of 4\n", file.name, image.width());
            return 1;
        }
        if (!writeBmp(folder, file.name, image))
            return 1;
    }
    return 0;
}
