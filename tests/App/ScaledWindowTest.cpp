// At a screen scale of 1.5 the window draws every pixel of the skin as 2 x 2 screen pixels, so
// that all cells keep one size, and clicks land on the cells they point at. Runs as the test
// ScaledWindow, with QT_SCALE_FACTOR=1.5.
#include "DemoApp.h"

#include <QImage>
#include <QMouseEvent>
#include <gtest/gtest.h>

using namespace pulsara;
using namespace pulsara::test;

TEST(ScaledWindow, EveryCellHasTheSameSizeAndClicksHitTheirCells)
{
    if (qEnvironmentVariable("QT_SCALE_FACTOR") != QStringLiteral("1.5"))
        GTEST_SKIP() << "runs with QT_SCALE_FACTOR=1.5, as the test ScaledWindow";
    DemoWindow shown(800, 600);
    Application& app = shown.app;
    Canvas& canvas = shown.window.canvas();
    ASSERT_EQ(canvas.zoom(), 2);

    // The empty cells of the Snare's row, drawn at twice the skin's size: those on the same kind
    // of beat are identical blocks of screen pixels.
    QImage screen = canvas.grab().toImage();
    ASSERT_EQ(screen.devicePixelRatio(), 1.5);
    StepGridView& grid = app.mainEditor().grid(0);
    auto cellPixels = [&](int column) {
        ElemRect cell = grid.cellRect(column, 1);
        return screen.copy(cell.x * 2, cell.y * 2, cell.width * 2, cell.height * 2);
    };
    EXPECT_EQ(grid.cellRect(1, 1).x - grid.cellRect(0, 1).x, 28);
    for (int column : { 1, 2, 3, 8, 9, 10 })
        EXPECT_TRUE(cellPixels(column) == cellPixels(0)) << "column " << column;

    // A click at the screen position of a cell toggles that cell, even the last one in view.
    for (auto [column, row] : { std::pair { 5, 1 }, std::pair { 10, 2 } }) {
        QPointF at = QPointF(cellCentre(grid, column, row)) * (2.0 / 1.5);
        QMouseEvent press(QEvent::MouseButtonPress, at, canvas.mapToGlobal(at), Qt::LeftButton, Qt::LeftButton, Qt::NoModifier);
        QMouseEvent release(QEvent::MouseButtonRelease, at, canvas.mapToGlobal(at), Qt::LeftButton, Qt::NoButton, Qt::NoModifier);
        QCoreApplication::sendEvent(&canvas, &press);
        QCoreApplication::sendEvent(&canvas, &release);
        EXPECT_TRUE(app.song().player().pattern(0).cell(uint32_t(row), uint32_t(column)).isNote()) << column;
    }
}
