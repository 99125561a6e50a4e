#pragma once

#include "base/ErrorReporter.h"

#include <cstdint>

namespace pulsara {

// A periodic job on the GUI thread. Subclasses override onTimer(), whose result chooses what
// happens next: 0 or keepValue keeps the period, a negative value stops the timer, a positive
// value r re-arms it so that the next call comes r ms after the start of this one.
//
// Every Timer is linked into one registry in order of construction; the common timer procedure
// finds the object of a platform timer there. Timers are members of long-lived objects, so the
// registry is only ever unlinked from when one is destroyed.
class Timer {
public:
    Timer();
    virtual ~Timer();
    Timer(const Timer&) = delete;
    Timer& operator=(const Timer&) = delete;

    // Records the arming time and stops the running timer; a non-zero period then starts a new
    // platform timer. setTimer(0) only stops. Returns the new timer's id, or else 1 when a
    // running timer was stopped and 0 when there was none.
    int32_t setTimer(uint32_t milliseconds);

    uint32_t timerId() const { return timerId_; }
    bool isRunning() const { return timerId_ != 0; }
    uint32_t armedAt() const { return armedAt_; }
    int32_t keepValue() const { return keepValue_; }
    void setKeepValue(int32_t value) { keepValue_ = value; }

    // The common timer procedure: runs the timer registered under the platform id.
    static void dispatch(uint32_t timerId);

    // Milliseconds of a steady clock; the tick count the timers measure with.
    static uint32_t tickCount();
    // Replaces the clock behind tickCount, so that tests can step time by hand; nullptr restores
    // the steady clock. GUI thread.
    using TickSource = uint32_t (*)();
    static void setTickSource(TickSource);

protected:
    virtual int32_t onTimer();

private:
    const ErrorContext* errorContext_ = &pulsara::errorContext();
    int32_t keepValue_ = 0;
    uint32_t armedAt_ = 0;
    Timer* next_ = nullptr;
    uint32_t timerId_ = 0;
};

} // namespace pulsara
