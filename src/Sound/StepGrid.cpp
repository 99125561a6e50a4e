#include "Sound/StepGrid.h"

namespace pulsara {

StepGrid::StepGrid(uint32_t rows, uint32_t length)
{
    resize(rows, length);
}

const AtomicStep* StepGrid::find(uint32_t row, uint32_t step) const
{
    if (row >= rows_ || step >= kCellsPerRow)
        return nullptr;
    return &cells_[static_cast<std::size_t>(row) * kCellsPerRow + step];
}

namespace {

constexpr uint32_t kTrackedRows = 64;

} // namespace

void StepGrid::clear()
{
    // Taken before the cells are emptied: a note written meanwhile marks its row again.
    uint64_t used = rowsWithNotes_.exchange(0, std::memory_order_relaxed);
    for (uint32_t row = rows_; row-- > 0;) {
        if (row < kTrackedRows && !(used >> row & 1))
            continue;
        for (uint32_t step = kCellsPerRow; step-- > 0;)
            setCell(row, step, kEmptyStep);
    }
}

bool StepGrid::mayHoldNotes(uint32_t row) const
{
    return row >= kTrackedRows || (rowsWithNotes_.load(std::memory_order_relaxed) >> row & 1);
}

void StepGrid::copyFrom(const StepGrid& other)
{
    if (&other == this)
        return;
    resize(other.rows_, other.length());
    for (uint32_t row = 0; row < rows_; ++row) {
        for (uint32_t step = 0; step < kCellsPerRow; ++step)
            setCell(row, step, other.cell(row, step));
    }
}

void StepGrid::resize(uint32_t rows, uint32_t length)
{
    if (rows != rows_ || !cells_) {
        // Fresh cells start empty, which is what clearing would make of them.
        cells_ = std::make_unique<AtomicStep[]>(static_cast<std::size_t>(rows) * kCellsPerRow);
        rows_ = rows;
        rowsWithNotes_.store(0, std::memory_order_relaxed);
    }
    setLength(length);
}

float StepGrid::note(uint32_t row, uint32_t step) const
{
    return isNote(row, step) ? 1.0f : 0.0f;
}

void StepGrid::setNote(uint32_t row, uint32_t step, float value)
{
    setCell(row, step, value > 0.0f ? kDefaultNote : kEmptyStep);
}

Step StepGrid::cell(uint32_t row, uint32_t step) const
{
    const AtomicStep* found = find(row, step);
    return found ? found->load() : kEmptyStep;
}

void StepGrid::setCell(uint32_t row, uint32_t step, Step value)
{
    const AtomicStep* found = find(row, step);
    if (!found)
        return;
    if (value.isNote() && row < kTrackedRows && !mayHoldNotes(row))
        rowsWithNotes_.fetch_or(uint64_t { 1 } << row, std::memory_order_relaxed);
    const_cast<AtomicStep*>(found)->store(value);
}

bool StepGrid::isNote(uint32_t row, uint32_t step) const
{
    const AtomicStep* found = find(row, step);
    return found && found->isNote();
}

} // namespace pulsara
