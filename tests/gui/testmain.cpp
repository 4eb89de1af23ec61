// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/testenvironment.h"

#include <QApplication>

int main(int argc, char** argv)
{
    // A display is used only when it is asked for: the tests need none.
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    // No service of a real desktop is called; tests of the message bus start one of their own.
    qputenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nonexistent/bus");
    // Nor does any test make a sound: with and without a sound device they all run alike.
    qputenv("PULSE_SERVER", "unix:/nonexistent/pulse");
    return tavrix::test::runTests(argc, argv, [](int& count, char** values) {
        auto application = std::make_unique<QApplication>(count, values);
        QApplication::setQuitOnLastWindowClosed(false);
        return application;
    });
}
