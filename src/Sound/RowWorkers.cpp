#include "Sound/RowWorkers.h"

#include <algorithm>

namespace pulsara {

namespace {

constexpr uint32_t kSerialMask = (1u << 30) - 1;

} // namespace

RowWorkers::RowWorkers(uint32_t helpers, uint32_t rows)
    : rows_(std::make_unique<Row[]>(rows))
    , rowCount_(rows)
{
    threads_.reserve(helpers);
    for (uint32_t i = 0; i < helpers; ++i)
        threads_.emplace_back([this] { runHelper(); });
}

RowWorkers::~RowWorkers()
{
    stopping_.store(true, std::memory_order_relaxed);
    serial_.fetch_add(1, std::memory_order_release);
    serial_.notify_all();
    for (std::thread& thread : threads_)
        thread.join();
}

void RowWorkers::render(Rows& rows, float* out, std::size_t samples)
{
    uint32_t serial = (serial_.load(std::memory_order_relaxed) + 1) & kSerialMask;
    if (serial == 0)
        serial = 1; // a sleeping helper waits for the serial to leave 0
    block_ = &rows;
    samples_ = samples;
    for (uint32_t r = 0; r < rowCount_; ++r)
        rows_[r].claim.store(word(serial, Claim::Free), std::memory_order_relaxed);
    serial_.store(serial, std::memory_order_release);
    serial_.notify_all();

    for (uint32_t r = 0; r < rowCount_; ++r) {
        Row& row = rows_[r];
        uint32_t seen = word(serial, Claim::Free);
        if (row.claim.compare_exchange_strong(seen, word(serial, Claim::Caller), std::memory_order_acquire)) {
            rows.render(r, out);
            continue;
        }
        // A helper has the row: wait for it, then add its buffer in the row's turn.
        while (seen != word(serial, Claim::Done)) {
            row.claim.wait(seen, std::memory_order_acquire);
            seen = row.claim.load(std::memory_order_acquire);
        }
        if (row.sounded)
            addInto(out, row.buffer.data(), samples);
    }
}

void RowWorkers::runHelper()
{
    uint32_t seen = 0;
    for (;;) {
        serial_.wait(seen, std::memory_order_acquire);
        if (stopping_.load(std::memory_order_relaxed))
            return;
        const uint32_t serial = serial_.load(std::memory_order_acquire);
        seen = serial;
        for (uint32_t r = rowCount_; r-- > 0;) {
            uint32_t claim = word(serial, Claim::Free);
            if (rows_[r].claim.compare_exchange_strong(claim, word(serial, Claim::Helper), std::memory_order_acquire)) {
                renderForHelper(r, serial);
                continue;
            }
            // The caller's walk has reached this row (it takes the rest itself), or the block is
            // over; a row another helper took is passed by.
            if (claim != word(serial, Claim::Helper) && claim != word(serial, Claim::Done))
                break;
        }
    }
}

void RowWorkers::renderForHelper(uint32_t r, uint32_t serial)
{
    Row& row = rows_[r];
    row.sounded = block_->sounds(r);
    if (row.sounded) {
        if (row.buffer.size() < samples_)
            row.buffer.resize(samples_);
        std::fill(row.buffer.begin(), row.buffer.begin() + static_cast<std::ptrdiff_t>(samples_), 0.0f);
        block_->render(r, row.buffer.data());
    }
    else {
        // Nothing is mixed: the row only moves on with the block.
        block_->render(r, nullptr);
    }
    row.claim.store(word(serial, Claim::Done), std::memory_order_release);
    row.claim.notify_all();
}

void RowWorkers::addInto(float* __restrict out, const float* __restrict buffer, std::size_t samples)
{
    // Whole runs of a constant length vectorise at -O2; the rest goes one by one.
    constexpr std::size_t kRun = 16;
    std::size_t runs = samples / kRun;
    for (std::size_t r = 0; r < runs; ++r) {
        for (std::size_t j = 0; j < kRun; ++j)
            out[r * kRun + j] += buffer[r * kRun + j];
    }
    for (std::size_t i = runs * kRun; i < samples; ++i)
        out[i] += buffer[i];
}

} // namespace pulsara
