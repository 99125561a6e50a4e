#pragma once

#include <QApplication>
#include <QElapsedTimer>

namespace pulsara::test {

// The one QApplication of a test program, made on first use. The test runner sets
// QT_QPA_PLATFORM=offscreen, so no display is needed; it is set here too for direct runs.
inline QApplication& testApplication()
{
    static int argc = 1;
    static char name[] = "gui_tests";
    static char* argv[] = { name, nullptr };
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    // Never destroyed: Qt's own globals may already be gone when static objects are, and a
    // QApplication torn down after them crashes the test program at exit.
    static QApplication* application = new QApplication(argc, argv);
    return *application;
}

// Runs the event loop until `done` holds, for five seconds at most; returns whether it holds.
template <typename Done>
bool processEventsUntil(Done done)
{
    QElapsedTimer clock;
    clock.start();
    while (clock.elapsed() < 5000 && !done())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
    return done();
}

} // namespace pulsara::test
