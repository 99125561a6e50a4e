#include "GUI/TimerDispatcher.h"

#include "GUI/Timer.h"

#include <QCoreApplication>
#include <QPointer>
#include <QThread>
#include <QTimerEvent>

namespace pulsara {

TimerDispatcher* TimerDispatcher::instance()
{
    static QPointer<TimerDispatcher> dispatcher;
    QCoreApplication* application = QCoreApplication::instance();
    if (!application || QThread::currentThread() != application->thread())
        return nullptr;
    if (!dispatcher)
        dispatcher = new TimerDispatcher(application);
    return dispatcher;
}

uint32_t TimerDispatcher::start(uint32_t milliseconds)
{
    int id = startTimer(static_cast<int>(milliseconds), Qt::PreciseTimer);
    return id > 0 ? static_cast<uint32_t>(id) : 0;
}

void TimerDispatcher::stop(uint32_t timerId)
{
    killTimer(static_cast<int>(timerId));
}

void TimerDispatcher::timerEvent(QTimerEvent* event)
{
    Timer::dispatch(static_cast<uint32_t>(event->timerId()));
}

} // namespace pulsara
