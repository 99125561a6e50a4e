#pragma once

#include <QObject>

namespace pulsara {

// The Qt side of the timers: one object on the GUI thread that owns every platform timer and
// hands each timer event to Timer::dispatch. It lives as a child of the application object, so a
// test that makes a new QApplication gets a fresh one.
class TimerDispatcher : public QObject {
    Q_OBJECT
public:
    // The dispatcher of the running application, created on first use; null without one.
    static TimerDispatcher* instance();

    // A precise timer with that period; 0 when Qt gives none.
    uint32_t start(uint32_t milliseconds);
    void stop(uint32_t timerId);

protected:
    void timerEvent(QTimerEvent*) override;

private:
    using QObject::QObject;
};

} // namespace pulsara
