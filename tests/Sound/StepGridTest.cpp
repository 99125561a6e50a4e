#include "Sound/StepGrid.h"

#include <gtest/gtest.h>

using namespace pulsara;

TEST(StepGrid, ReadsOutsideTheGridGiveTheEmptyStepAndWritesThereAreIgnored)
{
    StepGrid grid(40, 16);
    grid.setCell(39, 63, { 0.5f, 2.0f, 7 });
    EXPECT_EQ(grid.cell(39, 63), (Step { 0.5f, 2.0f, 7 }));
    EXPECT_EQ(grid.cell(40, 0), (Step { -1.0f, 1.0f, 0 }));
    EXPECT_EQ(grid.cell(0, 64), kEmptyStep);
    grid.setCell(0, 64, kDefaultNote); // not into the next row
    EXPECT_EQ(grid.cell(1, 0), kEmptyStep);
}

TEST(StepGrid, NotesAreSwitchedOnAndOffByValue)
{
    StepGrid grid(2, 16);
    grid.setNote(1, 3, 0.5f);
    EXPECT_EQ(grid.cell(1, 3), kDefaultNote);
    EXPECT_EQ(grid.note(1, 3), 1.0f);
    grid.setNote(1, 3, 0.0f);
    EXPECT_EQ(grid.cell(1, 3), kEmptyStep);
    EXPECT_EQ(grid.note(1, 3), 0.0f);
    grid.setCell(0, 0, { 0.0f, 1.0f, 0 }); // a quiet note is still a note
    EXPECT_EQ(grid.note(0, 0), 1.0f);
}

TEST(StepGrid, ResizeKeepsNotesUnlessTheRowCountChangesAndCopyTakesEverything)
{
    StepGrid grid(40, 16);
    grid.setCell(2, 40, kDefaultNote);
    grid.resize(40, 8);
    EXPECT_EQ(grid.cell(2, 40), kDefaultNote); // beyond the length but kept for later
    StepGrid copy;
    copy.copyFrom(grid);
    EXPECT_EQ(std::pair(copy.rows(), copy.length()), std::pair(40u, 8u));
    EXPECT_EQ(copy.cell(2, 40), kDefaultNote);
    grid.resize(20, 8);
    EXPECT_EQ(grid.cell(2, 40), kEmptyStep);
    EXPECT_EQ(grid.rows(), 20u);
    copy.clear();
    EXPECT_EQ(copy.cell(2, 40), kEmptyStep);
}
