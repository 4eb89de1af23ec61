// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/systeminfo.h"

#include "base/text/format.h"
#include "base/text/log.h"
#include "base/text/text.h"

#include <QDir>
#include <QSysInfo>

#include <algorithm>
#include <sys/utsname.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

// A machine that does not tell its processor's subtype counts as one of this kind.
constexpr int defaultCpuSubtype = 750;
constexpr int subtypeG3 = 9;
// 7.6 of the media layer: the version from which movies carry aperture dimensions.
constexpr quint32 mediaLayerVersionWord = 0x07608000;
constexpr int lastItem = 777;
constexpr int itemBeforeLast = 666;

int nibble(int word, int position)
{
    return (word >> (4 * position)) & 0xF;
}

bool isCanonicalNumber(const QString& text)
{
    if (formatText(QStringLiteral("%d"), {leadingInteger(text)}) == text) {
        return true;
    }
    const auto number = static_cast<float>(floatPrefix(text));
    return formatText(QStringLiteral("%f"), {static_cast<double>(number)}) == text;
}

} // namespace

bool archIntel()
{
    const QString architecture = QSysInfo::buildCpuArchitecture();
    return architecture == QLatin1String("x86_64") || architecture == QLatin1String("i386");
}

bool cpuG3()
{
    const bool result = cpuG3FromSubtype(defaultCpuSubtype);
    logLine(result ? QStringLiteral("cpuG3               :-(") : QStringLiteral("cpu > G3            :-)"));
    return result;
}

bool cpuG3FromSubtype(int subtype)
{
    return subtype == subtypeG3;
}

bool quartzExtremeCard()
{
    // The kernel offers a render node for every card that can accelerate drawing.
    const QDir cards(QStringLiteral("/dev/dri"));
    if (!cards.entryList({QStringLiteral("renderD*")}, QDir::System).isEmpty()) {
        return true;
    }
    logLine(QStringLiteral("Quartz Extreme      :-( not compatible video card"));
    logLine(QStringLiteral("INFORMATION         : if you have two graphic cards, the two cards must be Quartz Extreme "
                           "compatible."));
    logLine(QStringLiteral("                      if this is not the case, please remove the non compatible card."));
    return false;
}

int nbProcessors()
{
    const auto count = static_cast<int>(std::max(1L, sysconf(_SC_NPROCESSORS_ONLN)));
    logLine(QStringLiteral("Processors/Cores    x %d"), {count});
    return count;
}

float versionStr2Float(const QString& version)
{
    const QStringList parts = componentsSeparated(version, QStringLiteral("."));
    const auto part = [&parts](qsizetype index) {
        return leadingInteger(parts.value(index));
    };
    return static_cast<float>(part(0) + part(1) / 100.0 + part(2) / 10000.0);
}

float versionQT()
{
    return versionQTFromWord(mediaLayerVersionWord);
}

float versionQTFromWord(quint32 word)
{
    if (word == 0) {
        logLine(QStringLiteral("versionQT           :-( echec"));
        return 0;
    }
    const int major = static_cast<int>(word >> 24U);
    const int minor = static_cast<int>((word >> 20U) & 0xFU);
    const int fix = static_cast<int>((word >> 16U) & 0xFU);
    return versionStr2Float(formatText(QStringLiteral("%d.%d.%d"), {major, minor, fix}));
}

float versionOS()
{
    return versionOSFromWord(osVersion());
}

float versionOSFromWord(int word)
{
    if (word == 0) {
        logLine(QStringLiteral("versionOS           :-( echec"));
        return 0;
    }
    return versionStr2Float(formatText(QStringLiteral("%ld%ld.%ld.%ld"),
                                       {nibble(word, 3), nibble(word, 2), nibble(word, 1), nibble(word, 0)}));
}

int osVersion()
{
    utsname names = {};
    return uname(&names) == 0 ? osWordFromRelease(QString::fromLatin1(names.release)) : 0;
}

int osWordFromRelease(const QString& release)
{
    const QStringList parts = componentsSeparated(release, QStringLiteral("."));
    const auto part = [&parts](qsizetype index, int most) {
        return std::clamp(leadingInteger(parts.value(index)), 0, most);
    };
    const int major = part(0, 99);
    return major / 10 << 12 | major % 10 << 8 | part(1, 9) << 4 | part(2, 9);
}

bool os(int n)
{
    return osIsVersion(n, versionOS());
}

bool osIsVersion(int n, float version)
{
    const int base = n / 100 + 10;
    const auto value = static_cast<double>(version);
    return base <= value && value < base + 0.1;
}

QVariant appleScript(const QString& /*source*/)
{
    return {};
}

QString ASTID(const QString& text, const QString& delimiter, int index)
{
    if (text.isNull()) {
        return QLatin1String("");
    }
    if (delimiter.isNull() || isCanonicalNumber(text) || !containsText(text, delimiter)) {
        return text;
    }
    const QStringList items = componentsSeparated(text, delimiter);
    if (items.isEmpty()) {
        return text;
    }
    qsizetype position = index;
    if (index == lastItem) {
        position = items.size() - 1;
    } else if (index == itemBeforeLast) {
        position = items.size() - 2;
    }
    return position < 0 || position >= items.size() ? text : items[position];
}

} // namespace tavrix
