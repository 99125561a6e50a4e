#include "GUI/Timer.h"
#include "GUI/TimerDispatcher.h"
#include "QtTestApplication.h"

#include <QAbstractEventDispatcher>
#include <gtest/gtest.h>

#include <thread>
#include <vector>

namespace pulsara {
namespace {

// The tick count the timers read while a HandClock lives; the scripted callbacks move it on.
uint32_t handTicks = 5000;

struct HandClock {
    HandClock() { Timer::setTickSource([] { return handTicks; }); }
    ~HandClock() { Timer::setTickSource(nullptr); }
};

// Answers from a script of results, each call taking `took` ms of the tick count, and records
// the keep value each call saw. The tests call the common timer procedure themselves, as the
// platform timer would.
struct ScriptedTimer : Timer {
    explicit ScriptedTimer(std::vector<int32_t> script) : results(std::move(script)) { test::testApplication(); }
    std::vector<int32_t> results;
    uint32_t took = 0;
    std::vector<int32_t> keepValues;
    int32_t onTimer() override
    {
        handTicks += took;
        keepValues.push_back(keepValue());
        return keepValues.size() <= results.size() ? results[keepValues.size() - 1] : -1;
    }
};

// The id and period of every platform timer running.
std::vector<std::pair<uint32_t, int>> platformTimers()
{
    std::vector<std::pair<uint32_t, int>> running;
    for (const auto& timer : QAbstractEventDispatcher::instance()->registeredTimers(TimerDispatcher::instance()))
        running.emplace_back(uint32_t(timer.timerId), timer.interval);
    return running;
}

std::string logOf(const std::function<void()>& act)
{
    testing::internal::CaptureStderr();
    act();
    return testing::internal::GetCapturedStderr();
}

// A re-armed timer's next call comes r ms after the start of the call that asked for it: the time
// the call took is taken off, and a call that overran its r comes again at once.
TEST(Timer, ZeroAndTheKeepValueKeepThePeriodAPositiveResultRearmsFromTheCallsStartAndANegativeOneStops)
{
    HandClock clock;
    ScriptedTimer timer({ 0, 7, 40, 10, -1 });
    timer.took = 15;
    timer.setTimer(10);
    timer.setKeepValue(7);
    uint32_t first = timer.timerId();
    Timer::dispatch(first); // 0
    Timer::dispatch(first); // the keep value
    EXPECT_EQ(platformTimers(), (std::vector { std::pair(first, 10) }));
    Timer::dispatch(first); // 40, after 15 ms
    EXPECT_EQ(platformTimers(), (std::vector { std::pair(timer.timerId(), 25) })) << "the old timer was stopped";
    EXPECT_EQ(timer.keepValue(), 0);
    Timer::dispatch(timer.timerId()); // 10, after 15 ms
    EXPECT_EQ(platformTimers(), (std::vector { std::pair(timer.timerId(), 1) }));
    Timer::dispatch(timer.timerId());
    EXPECT_FALSE(timer.isRunning());
    EXPECT_EQ(timer.keepValues, (std::vector<int32_t> { 7, 7, 7, 0, 0 }));
    EXPECT_TRUE(platformTimers().empty());
    // setTimer(0) only stops, and says whether a timer was running.
    EXPECT_GT(timer.setTimer(10), 0);
    EXPECT_EQ(timer.setTimer(0), 1);
    EXPECT_TRUE(platformTimers().empty());
    EXPECT_EQ(timer.setTimer(0), 0);
}

// Timer faults go to the log: an unknown id, a timer without a callback (which then stops), and
// a thread without Qt's event dispatcher, which cannot own a timer.
TEST(Timer, LogsAnUnknownIdABaseCallbackAndATimerWithoutAnEventLoop)
{
    test::testApplication();
    std::string log = logOf([] { Timer::dispatch(987654); });
    EXPECT_NE(log.find("TimerProc: timer nod found/no fTimerID\n"), std::string::npos);
    EXPECT_NE(log.find(" -1() - "), std::string::npos);
    Timer timer;
    timer.setTimer(5);
    EXPECT_NE(logOf([&] { Timer::dispatch(timer.timerId()); }).find("0() - no timer set\n"), std::string::npos);
    EXPECT_FALSE(timer.isRunning());
    bool running = true;
    std::thread([&] {
        Timer elsewhere;
        log = logOf([&] { elsewhere.setTimer(10); });
        running = elsewhere.isRunning();
    }).join();
    EXPECT_FALSE(running);
    EXPECT_NE(log.find("cant settimer\n"), std::string::npos);
}

} // namespace
} // namespace pulsara
