#pragma once

#include "Sound/Step.h"

#include <atomic>
#include <cstdint>
#include <memory>

namespace pulsara {

// A pattern's notes: one row per instrument, 64 cells per row. Rows always hold 64 cells so
// that changing the pattern length never moves or loses a note. Reads outside the grid give the
// empty step and writes outside it are ignored.
class StepGrid {
public:
    static constexpr uint32_t kCellsPerRow = 64;

    StepGrid(uint32_t rows = 0, uint32_t length = 16);
    virtual ~StepGrid() = default;

    virtual void clear();
    virtual void copyFrom(const StepGrid&);
    // Reallocates the rows; the grid is cleared when the number of rows changes.
    virtual void resize(uint32_t rows, uint32_t length);
    // 1.0 when the cell holds a note, else 0.0.
    virtual float note(uint32_t row, uint32_t step) const;
    // Writes the default note when value > 0, the empty step otherwise.
    virtual void setNote(uint32_t row, uint32_t step, float value);

    Step cell(uint32_t row, uint32_t step) const;
    void setCell(uint32_t row, uint32_t step, Step);
    bool isNote(uint32_t row, uint32_t step) const;
    // False only for a row that has held no note since the grid was last cleared: clearing and
    // saving pass over those, so emptying or writing a sparse song visits few of its cells.
    bool mayHoldNotes(uint32_t row) const;

    uint32_t rows() const { return rows_; }
    uint32_t length() const { return length_.load(std::memory_order_relaxed); }
    void setLength(uint32_t length) { length_.store(length, std::memory_order_relaxed); }

private:
    const AtomicStep* find(uint32_t row, uint32_t step) const;

    uint32_t rows_ = 0;
    std::atomic<uint32_t> length_ { 16 }; // read by the audio thread
    std::unique_ptr<AtomicStep[]> cells_; // rows x 64, row-major
    // One bit per row (rows from 64 on always count as used). Atomic because the audio thread
    // writes the grid it plays.
    std::atomic<uint64_t> rowsWithNotes_ { 0 };
};

} // namespace pulsara
