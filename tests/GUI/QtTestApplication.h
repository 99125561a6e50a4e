#pragma once

#include <QApplication>

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
    static QApplication application(argc, argv);
    return application;
}

} // namespace pulsara::test
