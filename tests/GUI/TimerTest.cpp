#include "GUI/Timer.h"
#include "QtTestApplication.h"

#include <QElapsedTimer>
#include <QTimer>
#include <gtest/gtest.h>

#include <chrono>
#include <thread>
#include <vector>

namespace pulsara {
namespace {

// Records when it is called and answers from a script of results.
class ScriptedTimer : public Timer {
public:
    std::vector<int32_t> results;
    std::vector<qint64> callTimes;
    QElapsedTimer clock;
    int sleepMs = 0;

protected:
    int32_t onTimer() override
    {
        callTimes.push_back(clock.elapsed());
        if (sleepMs > 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(sleepMs));
        size_t call = callTimes.size() - 1;
        return call < results.size() ? results[call] : -1;
    }
};

void runEventLoopFor(int milliseconds)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < milliseconds)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

TEST(Timer, RearmsAfterASlowCallbackFromTheStartOfThatCall)
{
    test::testApplication();
    ScriptedTimer timer;
    timer.sleepMs = 30;
    timer.results = { 100, 100, -1 };
    timer.clock.start();
    timer.setTimer(20);
    runEventLoopFor(400);
    ASSERT_EQ(timer.callTimes.size(), 3u);
    // The 30 ms of work are inside the 100 ms, not added to them.
    qint64 gap = timer.callTimes[1] - timer.callTimes[0];
    EXPECT_GE(gap, 95);
    EXPECT_LT(gap, 125);
    EXPECT_FALSE(timer.isRunning());
}

TEST(Timer, KeepsItsPeriodOnZeroAndOnTheKeepValue)
{
    test::testApplication();
    ScriptedTimer timer;
    timer.setTimer(10);
    timer.setKeepValue(7);
    timer.results = { 0, 7, 0, -1 };
    uint32_t id = timer.timerId();
    timer.clock.start();
    runEventLoopFor(200);
    EXPECT_EQ(timer.callTimes.size(), 4u);
    EXPECT_NE(id, 0u);
}

TEST(Timer, StopsForGoodOnANegativeResultUntilSetAgain)
{
    test::testApplication();
    ScriptedTimer timer;
    timer.results = { -1, -1 };
    timer.clock.start();
    timer.setTimer(10);
    runEventLoopFor(120);
    EXPECT_EQ(timer.callTimes.size(), 1u);
    EXPECT_EQ(timer.timerId(), 0u);
    EXPECT_EQ(timer.keepValue(), 0);

    timer.setTimer(10);
    runEventLoopFor(120);
    EXPECT_EQ(timer.callTimes.size(), 2u);
}

TEST(Timer, SetTimerZeroStopsARunningTimer)
{
    test::testApplication();
    ScriptedTimer timer;
    timer.results = std::vector<int32_t>(100, 0);
    timer.clock.start();
    EXPECT_GT(timer.setTimer(10), 0);
    EXPECT_EQ(timer.setTimer(0), 1);
    EXPECT_FALSE(timer.isRunning());
    runEventLoopFor(60);
    EXPECT_TRUE(timer.callTimes.empty());
    EXPECT_EQ(timer.setTimer(0), 0);
}

TEST(Timer, UnknownIdOnlyWritesTheLogLine)
{
    test::testApplication();
    testing::internal::CaptureStderr();
    Timer::dispatch(987654);
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("TimerProc: timer nod found/no fTimerID\n"), std::string::npos);
    EXPECT_NE(log.find(" -1() - "), std::string::npos);
}

TEST(Timer, BaseCallbackLogsNoTimerSetAndStops)
{
    test::testApplication();
    Timer timer;
    testing::internal::CaptureStderr();
    timer.setTimer(5);
    runEventLoopFor(60);
    std::string log = testing::internal::GetCapturedStderr();
    EXPECT_NE(log.find("0() - no timer set\n"), std::string::npos);
    EXPECT_FALSE(timer.isRunning());
}

TEST(Timer, WithoutAnEventLoopTheTimerStaysStoppedAndLogs)
{
    // A thread without Qt's event dispatcher cannot own a timer.
    std::string log;
    bool running = true;
    std::thread worker([&] {
        Timer timer;
        testing::internal::CaptureStderr();
        timer.setTimer(10);
        log = testing::internal::GetCapturedStderr();
        running = timer.isRunning();
    });
    worker.join();
    EXPECT_FALSE(running);
    EXPECT_NE(log.find("cant settimer\n"), std::string::npos);
}

} // namespace
} // namespace pulsara
