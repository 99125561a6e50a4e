#include "Sound/RowWorkers.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <cstring>
#include <thread>
#include <vector>

using namespace pulsara;

namespace {

// Rows whose sum depends on the order of the additions: each row adds its own value to every
// sample, and the values are far apart in size. Row 2 is silent. In the first block the
// caller's row 0 waits until a helper has rendered the last row, so that helpers surely take part.
class OrderSensitiveRows final : public RowWorkers::Rows {
public:
    static constexpr uint32_t kRows = 6;
    static constexpr std::array<float, kRows> kValues { 1.0f, 1.0e8f, 0.0f, -1.0e8f, 3.0f, 1.0e-3f };

    bool sounds(uint32_t row) const override { return row != 2; }
    void render(uint32_t row, float* out) override
    {
        if (row == 0 && holdFirstRow)
            while (!lastRowDone.load(std::memory_order_acquire))
                std::this_thread::yield();
        threads[row] = std::this_thread::get_id();
        ++renders[row];
        if (sounds(row)) {
            for (std::size_t i = 0; i < samples; ++i)
                out[i] += kValues[row] * static_cast<float>(i + 1);
        }
        if (row == kRows - 1)
            lastRowDone.store(true, std::memory_order_release);
    }

    std::size_t samples = 0;
    bool holdFirstRow = true;
    std::atomic<bool> lastRowDone { false };
    std::array<std::thread::id, kRows> threads {};
    std::array<int, kRows> renders {};
};

} // namespace

TEST(RowWorkers, HelperRowsAreAddedInRowOrderSoTheSumIsTheSameToTheBit)
{
    RowWorkers workers(2, OrderSensitiveRows::kRows);
    OrderSensitiveRows rows;
    for (std::size_t samples : { 1000u, 1u, 333u, 4096u }) {
        for (int block = 0; block < 20; ++block) {
            rows.samples = samples;
            rows.renders = {};
            std::vector<float> expected(samples, 0.5f);
            for (uint32_t row = 0; row < OrderSensitiveRows::kRows; ++row) {
                if (rows.sounds(row)) {
                    for (std::size_t i = 0; i < samples; ++i)
                        expected[i] += OrderSensitiveRows::kValues[row] * static_cast<float>(i + 1);
                }
            }
            std::vector<float> out(samples, 0.5f);
            workers.render(rows, out.data(), samples);
            ASSERT_EQ(std::memcmp(out.data(), expected.data(), samples * sizeof(float)), 0) << samples << ", " << block;
            EXPECT_EQ(rows.renders, (std::array<int, OrderSensitiveRows::kRows> { 1, 1, 1, 1, 1, 1 }));
            if (rows.holdFirstRow) {
                EXPECT_NE(rows.threads[OrderSensitiveRows::kRows - 1], std::this_thread::get_id());
            }
            rows.holdFirstRow = false;
        }
    }
}
