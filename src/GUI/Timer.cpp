#include "GUI/Timer.h"

#include "GUI/TimerDispatcher.h"
#include "base/text.h"

#include <chrono>
#include <cstdio>

namespace pulsara {

namespace {

Timer* registryHead = nullptr;

uint32_t steadyTicks()
{
    auto now = std::chrono::steady_clock::now().time_since_epoch();
    return static_cast<uint32_t>(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

Timer::TickSource tickSource = steadyTicks;

// Timer faults go to the log only: a timer that could not be set simply stays stopped, and no
// box may interrupt the periodic work of the GUI thread.
void logTimerError(const ErrorContext* context, int32_t code, std::u16string_view message)
{
    static const ErrorContext emptyContext;
    std::string line = toUtf8(formatErrorText(context ? *context : emptyContext, code, message));
    std::fputs(line.c_str(), stderr);
}

} // namespace

Timer::Timer()
{
    Timer** link = &registryHead;
    while (*link)
        link = &(*link)->next_;
    *link = this;
}

Timer::~Timer()
{
    if (timerId_ != 0) {
        if (TimerDispatcher* dispatcher = TimerDispatcher::instance())
            dispatcher->stop(timerId_);
    }
    for (Timer** link = &registryHead; *link; link = &(*link)->next_) {
        if (*link == this) {
            *link = next_;
            break;
        }
    }
}

uint32_t Timer::tickCount()
{
    return tickSource();
}

void Timer::setTickSource(TickSource source)
{
    tickSource = source ? source : steadyTicks;
}

int32_t Timer::setTimer(uint32_t milliseconds)
{
    armedAt_ = tickCount();
    TimerDispatcher* dispatcher = TimerDispatcher::instance();
    int32_t result = 0;
    if (timerId_ != 0) {
        if (dispatcher)
            dispatcher->stop(timerId_);
        result = 1;
        // Qt reuses timer ids, so a stopped timer must not keep answering to its old one.
        timerId_ = 0;
    } else {
        timerId_ = 0;
        keepValue_ = 0;
    }
    if (milliseconds == 0)
        return result;
    timerId_ = dispatcher ? dispatcher->start(milliseconds) : 0;
    if (timerId_ == 0) {
        logTimerError(errorContext_, kFatal, u"cant settimer\n");
        return 0;
    }
    return static_cast<int32_t>(timerId_);
}

int32_t Timer::onTimer()
{
    logTimerError(errorContext_, kRecoverable, u"no timer set\n");
    return -1;
}

void Timer::dispatch(uint32_t timerId)
{
    uint32_t startedAt = tickCount();
    Timer* timer = registryHead;
    while (timer && timer->timerId_ != timerId)
        timer = timer->next_;
    if (!timer || timer->timerId_ == 0) {
        logTimerError(&errorContext(), kFatal, u"TimerProc: timer nod found/no fTimerID\n");
        return;
    }
    int32_t result = timer->onTimer();
    if (result == 0 || result == timer->keepValue_)
        return;
    // onTimer may have re-armed or stopped the timer itself; only the timer that fired is ours.
    if (timer->timerId_ != timerId)
        return;
    if (TimerDispatcher* dispatcher = TimerDispatcher::instance())
        dispatcher->stop(timerId);
    timer->timerId_ = 0;
    timer->keepValue_ = 0;
    if (result > 0) {
        uint32_t elapsed = tickCount() - startedAt;
        int32_t delay = result - static_cast<int32_t>(elapsed);
        // A callback that overran its own period comes again at once rather than never.
        timer->setTimer(static_cast<uint32_t>(delay > 0 ? delay : 1));
    }
}

} // namespace pulsara
