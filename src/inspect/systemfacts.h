// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// What the machine and the system say about themselves.

#include <QList>
#include <QString>

namespace tavrix
{

// "" for a value that the system does not tell.
struct SystemFact {
    QString label;
    QString value;
};

// Program, system, processor, memory, graphics, desktop, language, Qt, ffmpeg and its libraries, encoders. Starts the
// tool once. Labels are English: a report is read by the maintainers.
[[nodiscard]] QList<SystemFact> systemFacts();

// The parts that read what the system writes.
[[nodiscard]] QString processorName(const QString& cpuinfo); // of /proc/cpuinfo
[[nodiscard]] QString memoryWords(const QString& meminfo);   // of /proc/meminfo, in mebibytes
[[nodiscard]] QString systemName(const QString& osRelease);  // of os-release
// "5.1.9-0+deb12u1" from what "-version" prints; "" when it says nothing of the kind.
[[nodiscard]] QString toolVersion(const QString& banner);

} // namespace tavrix
