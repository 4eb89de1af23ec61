// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Questions about the machine and the system. Versions a.b.c are the float a + b/100 + c/10000.

#include <QString>
#include <QVariant>

namespace tavrix
{

[[nodiscard]] bool archIntel(); // whether this build runs on Intel processors
[[nodiscard]] bool cpuG3();     // a processor too old for the program; no machine of today
[[nodiscard]] bool cpuG3FromSubtype(int subtype);
[[nodiscard]] bool quartzExtremeCard(); // whether a card accelerates drawing
[[nodiscard]] int nbProcessors();       // at least 1
// Missing parts and parts without a number count 0, a fourth part is ignored.
[[nodiscard]] float versionStr2Float(const QString& version);
[[nodiscard]] float versionQT();                     // of the media layer: 7.6 or later
[[nodiscard]] float versionQTFromWord(quint32 word); // 0x07418000 is 7.4.1; the word 0 is logged and gives 0
[[nodiscard]] float versionOS();                     // of the kernel; 0 when unknown
[[nodiscard]] float versionOSFromWord(int word);     // 0x1058 is 10.5.8; the word 0 is logged and gives 0
[[nodiscard]] int osVersion();                       // the word 0xMMmb of the kernel, 0 when unknown
// "6.1.55-x" gives 0x0619: the minor and the fix number have one digit and stay at 9.
[[nodiscard]] int osWordFromRelease(const QString& release);
// True when the system's version lies in [k + 10, k + 10.1), k being n / 100 without its fraction.
[[nodiscard]] bool os(int n);
[[nodiscard]] bool osIsVersion(int n, float version);      // the same question about a given system version
[[nodiscard]] QVariant appleScript(const QString& source); // nothing runs here: an invalid value
// Item of the text split at the delimiter; 777 asks for the last, 666 for the one before. The whole text for a number
// in its plain form, without the delimiter, or for an index out of range; "" for nothing.
[[nodiscard]] QString ASTID(const QString& text, const QString& delimiter, int index);

} // namespace tavrix
