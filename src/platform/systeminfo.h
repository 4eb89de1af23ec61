#pragma once

#include <QString>
#include <QVariant>

// Questions about the machine and the system. Versions a.b.c are the float a + b/100 + c/10000.
namespace tavrix
{

[[nodiscard]] bool archIntel(); // whether this build runs on Intel processors
[[nodiscard]] bool cpuG3();
[[nodiscard]] bool cpuG3FromSubtype(int subtype);
[[nodiscard]] bool quartzExtremeCard();
[[nodiscard]] int nbProcessors();
[[nodiscard]] float versionStr2Float(const QString& version);
[[nodiscard]] float versionQT(); // of the media layer: 7.6 or later
[[nodiscard]] float versionQTFromWord(quint32 word);
[[nodiscard]] float versionOS(); // of the kernel; 0 when unknown
[[nodiscard]] float versionOSFromWord(int word);
[[nodiscard]] int osVersion(); // the word 0xMMmb
[[nodiscard]] int osWordFromRelease(const QString& release);
[[nodiscard]] bool os(int n);
[[nodiscard]] bool osIsVersion(int n, float version);      // the same question about a given system version
[[nodiscard]] QVariant appleScript(const QString& source); // nothing runs here: an invalid value
[[nodiscard]] QString ASTID(const QString& text, const QString& delimiter, int index);

} // namespace tavrix
