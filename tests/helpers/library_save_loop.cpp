// SPDX-License-Identifier: GPL-3.0-or-later
//
// Saves numbered library states to one file as fast as it can, through the
// program's writer, until it is killed. Used to kill a save at random moments.
//
//   library_save_loop <path> <first state>
//
// It prints "ready" once, then "saved N" after each state N is on disk.

#include "LibraryGenerator.h"

#include "library/LibraryWriter.h"

#include <QCoreApplication>

#include <cstdio>

using namespace Vesko;

Library savedState(int number)
{
    Library library = Test::generateLibrary(200 + number % 7 * 50, quint32(number));
    library.projects[0].name = QStringLiteral("state %1").arg(number);
    return library;
}

int main(int argc, char *argv[])
{
    QCoreApplication app(argc, argv);
    if (argc != 3) {
        std::fprintf(stderr, "usage: library_save_loop <path> <first state>\n");
        return 2;
    }
    const QString path = QString::fromLocal8Bit(argv[1]);
    int state = QByteArray(argv[2]).toInt();
    std::puts("ready");
    std::fflush(stdout);
    for (;; ++state) {
        if (auto failure = LibraryWriter::shared().writeNow(savedState(state), path)) {
            std::fprintf(stderr, "%s\n", qPrintable(*failure));
            return 1;
        }
        std::printf("saved %d\n", state);
        std::fflush(stdout);
    }
}
