#include "Sound/StepGrid.h"

#include <gtest/gtest.h>

using namespace pulsara;

TEST(StepGrid, ReadsOutsideTheGridGiveTheEmptyStep)
{
    StepGrid grid(40, 16);
    grid.setCell(39, 63, { 0.5f, 2.0f, 7 });
    EXPECT_EQ(grid.cell(39, 63), (Step { 0.5f, 2.0f, 7 }));
    EXPECT_EQ(grid.cell(40, 0), kEmptyStep);
    EXPECT_EQ(grid.cell(0, 64), kEmptyStep);
    EXPECT_EQ(kEmptyStep, (Step { -1.0f, 1.0f, 0 }));
    // Writes outside are ignored rather than landing in a neighbouring row.
    grid.setCell(0, 64, kDefaultNote);
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
    // A quiet note (volume 0) is still a note.
    grid.setCell(0, 0, { 0.0f, 1.0f, 0 });
    EXPECT_EQ(grid.note(0, 0), 1.0f);
}

TEST(StepGrid, ResizeKeepsNotesUnlessTheRowCountChanges)
{
    StepGrid grid(40, 16);
    grid.setCell(2, 40, kDefaultNote);
    grid.resize(40, 8);
    EXPECT_EQ(grid.length(), 8u);
    EXPECT_EQ(grid.cell(2, 40), kDefaultNote); // beyond the length but kept for later
    grid.resize(20, 8);
    EXPECT_EQ(grid.cell(2, 40), kEmptyStep);
    EXPECT_EQ(grid.rows(), 20u);
}

TEST(StepGrid, ClearAndCopy)
{
    StepGrid source(3, 32);
    source.setCell(2, 31, { 0.25f, 0.5f, 512 });
    StepGrid copy;
    copy.copyFrom(source);
    EXPECT_EQ(copy.rows(), 3u);
    EXPECT_EQ(copy.length(), 32u);
    EXPECT_EQ(copy.cell(2, 31), source.cell(2, 31));
    copy.clear();
    EXPECT_EQ(copy.cell(2, 31), kEmptyStep);
    EXPECT_EQ(source.cell(2, 31).volume, 0.25f);
}
