#include "GUI/Timer.h"
#include "QtTestApplication.h"

#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

namespace pulsara {
namespace {

// Records when it is called and answers from a script of results.
class ScriptedTimer : public Timer {
public:
    explicit ScriptedTimer(std::vector<int32_t> script, int sleepMs = 0) : results(std::move(script)), sleepMs_(sleepMs)
    {
        test::testApplication();
        clock.start();
    }
    std::vector<int32_t> results;
    std::vector<qint64> callTimes;
    std::vector<int32_t> keepValues; // as each call saw it
    QElapsedTimer clock;

protected:
    int32_t onTimer() override
    {
        callTimes.push_back(clock.elapsed());
        keepValues.push_back(keepValue());
        std::this_thread::sleep_for(std::chrono::milliseconds(sleepMs_));
        return callTimes.size() <= results.size() ? results[callTimes.size() - 1] : -1;
    }

private:
    int sleepMs_;
};

// Captures what the timer writes to stderr while `act` runs.
template <typename Act> std::string logOf(Act act)
{
    testing::internal::CaptureStderr();
    act();
    return testing::internal::GetCapturedStderr();
}

TEST(Timer, RearmsAfterASlowCallbackFromTheStartOfThatCall)
{
    ScriptedTimer timer({ 100, 100, -1 }, 30);
    timer.setTimer(20);
    test::runEventLoopFor(400);
    ASSERT_EQ(timer.callTimes.size(), 3u);
    // The 30 ms of work are inside the 100 ms, not added to them.
    qint64 gap = timer.callTimes[1] - timer.callTimes[0];
    EXPECT_GE(gap, 95);
    EXPECT_LT(gap, 125);
    EXPECT_FALSE(timer.isRunning());
}

TEST(Timer, KeepsItsPeriodOnZeroAndOnTheKeepValueAndStopsOnANegativeResultUntilSetAgain)
{
    ScriptedTimer timer({ 0, 7, 0, -1, -1 });
    timer.setTimer(10);
    timer.setKeepValue(7);
    EXPECT_NE(timer.timerId(), 0u);
    test::runEventLoopFor(200);
    // Answering the keep value keeps the timer as it is rather than re-arming it.
    EXPECT_EQ(timer.keepValues, (std::vector<int32_t> { 7, 7, 7, 7 }));
    EXPECT_EQ(timer.timerId(), 0u);
    EXPECT_EQ(timer.keepValue(), 0);
    timer.setTimer(10);
    test::runEventLoopFor(120);
    EXPECT_EQ(timer.keepValues.size(), 5u);
}

TEST(Timer, SetTimerZeroStopsARunningTimer)
{
    ScriptedTimer timer(std::vector<int32_t>(100, 0));
    EXPECT_GT(timer.setTimer(10), 0);
    EXPECT_EQ(timer.setTimer(0), 1);
    EXPECT_FALSE(timer.isRunning());
    test::runEventLoopFor(60);
    EXPECT_TRUE(timer.callTimes.empty());
    EXPECT_EQ(timer.setTimer(0), 0);
}

TEST(Timer, LogsAnUnknownIdAndABaseCallbackWhichStops)
{
    test::testApplication();
    std::string log = logOf([] { Timer::dispatch(987654); });
    EXPECT_NE(log.find("TimerProc: timer nod found/no fTimerID\n"), std::string::npos);
    EXPECT_NE(log.find(" -1() - "), std::string::npos);
    Timer timer;
    EXPECT_NE(logOf([&] {
        timer.setTimer(5);
        test::runEventLoopFor(60);
    }).find("0() - no timer set\n"),
        std::string::npos);
    EXPECT_FALSE(timer.isRunning());
}

TEST(Timer, WithoutAnEventLoopTheTimerStaysStoppedAndLogs)
{
    // A thread without Qt's event dispatcher cannot own a timer.
    std::string log;
    bool running = true;
    std::thread worker([&] {
        Timer timer;
        log = logOf([&] { timer.setTimer(10); });
        running = timer.isRunning();
    });
    worker.join();
    EXPECT_FALSE(running);
    EXPECT_NE(log.find("cant settimer\n"), std::string::npos);
}

} // namespace
} // namespace pulsara
