// SPDX-License-Identifier: GPL-3.0-or-later
//
// The program's settings file, $XDG_CONFIG_HOME/Vesko/Vesko.conf, in INI
// format; and SettingsWriter, which writes values to it on a worker thread.

#pragma once

#include <QSettings>

#include <memory>

namespace Vesko {

class SerialQueue;

std::unique_ptr<QSettings> openSettingsFile();
//! The value of \a key: one given to a SettingsWriter that is still on its
//! way to the file, else the file's.
QVariant settingValue(const QString &key);

//! Writes values to the settings file on a worker thread of its own, in the
//! order given, so that the main thread never waits for the disk. A burst
//! of values goes to the disk at once. Other QSettings objects of the
//! process see a value as soon as the worker has taken it.
class SettingsWriter
{
public:
    SettingsWriter();
    //! Waits for the values already given to reach the file.
    ~SettingsWriter();

    //! The process's writer, made on first use and never destroyed: every
    //! setting the program changes goes through it, and the program flushes
    //! it on its way out.
    static SettingsWriter &shared();

    void setValue(const QString &key, const QVariant &value);
    //! Blocks until every value given so far is in the file: for the end of
    //! the program, and for tests.
    void flush();

private:
    struct Worker;

    std::shared_ptr<Worker> m_worker;
    std::unique_ptr<SerialQueue> m_queue;
};

} // namespace Vesko
