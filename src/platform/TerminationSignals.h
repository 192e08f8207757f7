// SPDX-License-Identifier: GPL-3.0-or-later
//
// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal on the main thread, so
// that the program ends through its ordinary quit path and saves on the way.

#pragma once

#include <QObject>

class QSocketNotifier;

namespace Vesko {

class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    //! Installs the handlers. Only one instance may exist.
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    //! Emitted on the main thread for each signal received.
    void terminationRequested(int signalNumber);

private:
    void readSignal();

    QSocketNotifier *m_notifier = nullptr;
};

} // namespace Vesko
