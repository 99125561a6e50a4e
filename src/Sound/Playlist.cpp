#include "Sound/Playlist.h"

#include <algorithm>

namespace pulsara {

Playlist::Playlist(uint32_t rows, uint32_t columns)
{
    resize(rows, columns);
}

void Playlist::resize(uint32_t rows, uint32_t columns)
{
    rows_ = rows;
    columns_ = columns;
    cells_ = std::make_unique<std::atomic<uint32_t>[]>(static_cast<std::size_t>(rows) * columns);
    lastUsedPosition_ = 0;
}

float Playlist::get(uint32_t row, uint32_t column) const
{
    if (row >= rows_ || column >= columns_)
        return 0.0f;
    return cells_[static_cast<std::size_t>(row) * columns_ + column].load(std::memory_order_relaxed) ? 1.0f : 0.0f;
}

bool Playlist::columnHasCell(uint32_t column) const
{
    for (uint32_t row = 0; row < rows_; ++row) {
        if (isOn(row, column))
            return true;
    }
    return false;
}

void Playlist::set(uint32_t row, uint32_t column, float value)
{
    if (row >= rows_ || column >= columns_)
        return;
    bool on = value > 0.0f;
    cells_[static_cast<std::size_t>(row) * columns_ + column].store(on ? 1 : 0, std::memory_order_relaxed);
    if (column == 0)
        return;
    int32_t last = lastUsedPosition();
    auto position = static_cast<int32_t>(column);
    if (on && position > last) {
        lastUsedPosition_.store(position, std::memory_order_relaxed);
    } else if (!on && position == last) {
        while (last > 0 && !columnHasCell(static_cast<uint32_t>(last)))
            --last;
        lastUsedPosition_.store(last, std::memory_order_relaxed);
    }
}

void Playlist::copyFrom(const Playlist& other)
{
    if (&other == this)
        return;
    if (other.rows_ != rows_ || other.columns_ != columns_)
        resize(other.rows_, other.columns_);
    for (std::size_t i = 0; i < static_cast<std::size_t>(rows_) * columns_; ++i)
        cells_[i].store(other.cells_[i].load(std::memory_order_relaxed), std::memory_order_relaxed);
    lastUsedPosition_.store(other.lastUsedPosition(), std::memory_order_relaxed);
}

void Playlist::clear()
{
    uint32_t used = usedColumns();
    for (uint32_t row = 0; row < rows_; ++row) {
        for (uint32_t column = 0; column < used; ++column)
            cells_[static_cast<std::size_t>(row) * columns_ + column].store(0, std::memory_order_relaxed);
    }
    lastUsedPosition_.store(0, std::memory_order_relaxed);
}

uint32_t Playlist::usedColumns() const
{
    return std::min<uint32_t>(static_cast<uint32_t>(lastUsedPosition()) + 1, columns_);
}

bool Playlist::isEmpty() const
{
    for (std::size_t i = 0; i < static_cast<std::size_t>(rows_) * columns_; ++i) {
        if (cells_[i].load(std::memory_order_relaxed))
            return false;
    }
    return true;
}

} // namespace pulsara
