// SPDX-License-Identifier: GPL-3.0-or-later
//
// The main function of a test of widgets: a QApplication, with the XDG
// folders isolated before anything reads them, and the same fonts and
// resolution on every machine.

#pragma once

#include "TestEnvironment.h"

#include <QApplication>

#define VESKO_WIDGET_TEST_MAIN(TestObject)                                                         \
    int main(int argc, char *argv[])                                                               \
    {                                                                                              \
        Vesko::Test::IsolatedEnvironment environment;                                              \
        QApplication::setAttribute(Qt::AA_Use96Dpi, true);                                         \
        QApplication app(argc, argv);                                                              \
        app.setQuitOnLastWindowClosed(false);                                                      \
        TestObject test;                                                                           \
        QTEST_SET_MAIN_SOURCE_PATH                                                                 \
        return QTest::qExec(&test, argc, argv);                                                    \
    }
