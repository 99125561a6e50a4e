#pragma once

#include <atomic>
#include <cstdint>
#include <memory>
#include <thread>
#include <vector>

namespace pulsara {

// Helper threads that render the rows of a block at the same time as the thread that asked for
// the block, for rendering away from the device (an export). The rows of the sequencer are
// independent voices, but the mix adds them up in row order, and float addition depends on its
// order: so the asking thread walks the rows in order and mixes each one straight into the
// block, unless a helper has taken it; helpers take rows from the last one down, each into a
// buffer of its own, which the asking thread adds into the block when its walk reaches that
// row. Every output sample thus gets the same additions in the same order as from one thread,
// and the output is the same to the bit.
//
// Threads: render() is called by one thread at a time (the thread that renders); the helpers
// only run the rows they take while render() waits for them, and sleep in between.
class RowWorkers {
public:
    // What a block asks of its rows.
    class Rows {
    public:
        virtual ~Rows() = default;
        // Whether mixing the row may add anything to this block. A row that cannot is still
        // rendered, with no output buffer (nullptr), so that its state moves on with the block.
        virtual bool sounds(uint32_t row) const = 0;
        // Mixes the row's part of the block into `out` (adds to it). Called once per row and
        // block, on any of the threads, never for two rows that share state at once: rows must be
        // independent.
        virtual void render(uint32_t row, float* out) = 0;
    };

    // Starts `helpers` threads for blocks of `rows` rows.
    RowWorkers(uint32_t helpers, uint32_t rows);
    ~RowWorkers();
    RowWorkers(const RowWorkers&) = delete;
    RowWorkers& operator=(const RowWorkers&) = delete;

    uint32_t helpers() const { return static_cast<uint32_t>(threads_.size()); }

    // Renders every row of a block of `samples` floats into `out`, which holds what the rows are
    // added to (silence, usually). Returns when every row is done and added.
    void render(Rows&, float* out, std::size_t samples);

private:
    enum class Claim : uint32_t { Free, Caller, Helper, Done };
    // A row's claim word: the block's serial number above the claim, so that a helper still
    // looking at an earlier block can never take a row of the current one.
    static uint32_t word(uint32_t serial, Claim claim) { return serial << 2 | static_cast<uint32_t>(claim); }

    void runHelper();
    void renderForHelper(uint32_t row, uint32_t serial);
    static void addInto(float* out, const float* buffer, std::size_t samples);

    struct Row {
        std::atomic<uint32_t> claim { 0 };
        bool sounded = false; // written by the helper that took the row, before its Done
        std::vector<float> buffer; // the helper's output of the row
    };

    std::unique_ptr<Row[]> rows_;
    uint32_t rowCount_ = 0;
    // The block on offer, set before its serial is published; a helper reads them only once it has
    // taken a row of that block, so never while the next block is being set up.
    Rows* block_ = nullptr;
    std::size_t samples_ = 0;
    std::atomic<uint32_t> serial_ { 0 };
    std::atomic<bool> stopping_ { false };
    std::vector<std::thread> threads_;
};

} // namespace pulsara
