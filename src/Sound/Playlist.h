#pragma once

#include <atomic>
#include <cstdint>
#include <memory>

namespace pulsara {

// Which pattern (row) is on at which song position (column). Cells are flags that the playlist
// editor writes while the audio thread reads them.
class Playlist {
public:
    Playlist(uint32_t rows = 0, uint32_t columns = 0);

    void resize(uint32_t rows, uint32_t columns);
    // 1.0 when the cell is on, 0.0 when off or outside the playlist.
    float get(uint32_t row, uint32_t column) const;
    bool isOn(uint32_t row, uint32_t column) const { return get(row, column) > 0.0f; }
    // Switches a cell on (value > 0) or off and keeps the last used position up to date.
    void set(uint32_t row, uint32_t column, float value);
    void copyFrom(const Playlist&);
    void clear();

    uint32_t rows() const { return rows_; }
    uint32_t columns() const { return columns_; }
    // The highest column with any cell on; 0 when the playlist is empty.
    int32_t lastUsedPosition() const { return lastUsedPosition_.load(std::memory_order_relaxed); }
    // The columns up to the last used position: nothing is placed beyond them.
    uint32_t usedColumns() const;
    bool isEmpty() const;

private:
    bool columnHasCell(uint32_t column) const;

    uint32_t rows_ = 0;
    uint32_t columns_ = 0;
    std::unique_ptr<std::atomic<uint32_t>[]> cells_; // rows x columns, row-major
    std::atomic<int32_t> lastUsedPosition_ { 0 };
};

} // namespace pulsara
