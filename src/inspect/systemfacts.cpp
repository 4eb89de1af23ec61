// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspect/systemfacts.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/text/format.h"
#include "base/text/listconversions.h"
#include "base/text/text.h"
#include "inspect/toolrun.h"
#include "platform/systeminfo.h"
#include "process/runners.h"
#include "quicktime/av/codecinventory.h"

#include <QDir>
#include <QFile>
#include <QSysInfo>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libavutil/avutil.h>
#include <libswscale/swscale.h>
}

namespace tavrix
{

namespace
{

constexpr qint64 systemFileLimit = qint64{1} << 20U;

// Files of the system have no size that can be relied on.
QString textOfFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.read(systemFileLimit)) : QString();
}

QString environmentValue(const char* name)
{
    return QString::fromLocal8Bit(qgetenv(name));
}

// The driver of each card, and whether one of them accelerates.
QString graphicsWords()
{
    const QDir cards(QStringLiteral("/sys/class/drm"));
    QStringList words;
    for (const QString& card : cards.entryList({QStringLiteral("card?")}, QDir::Dirs)) {
        const QString uevent = textOfFile(cards.filePath(card + QStringLiteral("/device/uevent")));
        const QString driver = textAfter(uevent, QStringLiteral("DRIVER="), QStringLiteral("\n"));
        const QString id = textAfter(uevent, QStringLiteral("PCI_ID="), QStringLiteral("\n"));
        words << (id.isEmpty() ? driver : driver + QStringLiteral(" (") + id + QLatin1Char(')'));
    }
    words << (quartzExtremeCard() ? QStringLiteral("accelerated") : QStringLiteral("not accelerated"));
    return words.join(QStringLiteral(", "));
}

QString desktopWords()
{
    QStringList words;
    for (const char* name : {"XDG_CURRENT_DESKTOP", "XDG_SESSION_TYPE"}) {
        if (const QString value = environmentValue(name); !value.isEmpty()) {
            words << value;
        }
    }
    return words.isEmpty() ? QStringLiteral("none") : words.join(QStringLiteral(", "));
}

QString languageWords()
{
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const QString value = environmentValue(name); !value.isEmpty()) {
            return value + QStringLiteral(", shown in ") + currentLanguage();
        }
    }
    return QStringLiteral("not set, shown in ") + currentLanguage();
}

QString libraryVersion(unsigned int version)
{
    return formatText(QStringLiteral("%u.%u.%u"), {version >> 16U, (version >> 8U) & 0xFFU, version & 0xFFU});
}

QString libraryWords()
{
    return formatText(QStringLiteral("libavutil %@, libavcodec %@, libavformat %@, libswscale %@"),
                      {libraryVersion(avutil_version()), libraryVersion(avcodec_version()),
                       libraryVersion(avformat_version()), libraryVersion(swscale_version())});
}

QString encoderWords()
{
    const QList<QTCompDesc> components = componentsCollecte();
    QStringList codes;
    for (const QTCompDesc& component : components) {
        codes << component.subType().trimmed();
    }
    codes.removeDuplicates();
    codes.sort();
    return formatText(QStringLiteral("%d: %@"), {static_cast<int>(components.size()), array2Str(codes)});
}

QString secondPassWords()
{
    const bool intermediate = codecsCheck({QStringLiteral("ICOD")}).value(0) != 0;
    const QStringList prores = codecsProresCheck();
    return formatText(
        QStringLiteral("Apple Intermediate Codec %@, ProRes %@"),
        {intermediate ? "yes" : "no", prores.isEmpty() ? QStringLiteral("no") : prores.join(QStringLiteral(", "))});
}

QString toolWords()
{
    const QString tool = ffmpegPathStr();
    if (tool.isEmpty()) {
        return QStringLiteral("the tool is missing");
    }
    const ToolAnswer answer = ToolRun(QStringList{tool, QStringLiteral("-version")}).finish();
    const QString version = toolVersion(QString::fromUtf8(answer.errors + answer.output));
    return version.isEmpty() ? QStringLiteral("not found: ") + answer.failure : version;
}

} // namespace

QString processorName(const QString& cpuinfo)
{
    for (const char* key : {"model name", "Model", "Hardware", "cpu model"}) {
        for (const QString& line : linesToArray(cpuinfo)) {
            if (line.startsWith(QLatin1String(key)) && line.contains(QLatin1Char(':'))) {
                return line.section(QLatin1Char(':'), 1).trimmed();
            }
        }
    }
    return QStringLiteral("");
}

QString memoryWords(const QString& meminfo)
{
    const auto mebibytes = [&meminfo](const QString& key) {
        return leadingInteger(textAfter(meminfo, key + QLatin1Char(':'))) / 1024;
    };
    const int whole = mebibytes(QStringLiteral("MemTotal"));
    if (whole == 0) {
        return QStringLiteral("");
    }
    return formatText(QStringLiteral("%d MiB, %d MiB available"), {whole, mebibytes(QStringLiteral("MemAvailable"))});
}

QString systemName(const QString& osRelease)
{
    QString name = textAfter(QLatin1Char('\n') + osRelease, QStringLiteral("\nPRETTY_NAME="), QStringLiteral("\n"));
    return notNothing(name.remove(QLatin1Char('"')));
}

QString toolVersion(const QString& banner)
{
    const QString begin = QStringLiteral("ffmpeg version ");
    const qsizetype at = banner.indexOf(begin);
    return at < 0 ? QStringLiteral("") : banner.mid(at + begin.size()).section(QLatin1Char(' '), 0, 0).trimmed();
}

QList<SystemFact> systemFacts()
{
    const QString system = systemName(textOfFile(QStringLiteral("/etc/os-release")));
    return {{QStringLiteral("Program"), bundleName() + QLatin1Char(' ') + bundleVersion()},
            {QStringLiteral("System"),
             formatText(QStringLiteral("%@, %@ %@, %@"), {system, QSysInfo::kernelType(), QSysInfo::kernelVersion(),
                                                          QSysInfo::currentCpuArchitecture()})},
            {QStringLiteral("Processor"),
             formatText(QStringLiteral("%@, %d of them"),
                        {processorName(textOfFile(QStringLiteral("/proc/cpuinfo"))), nbProcessors()})},
            {QStringLiteral("Memory"), memoryWords(textOfFile(QStringLiteral("/proc/meminfo")))},
            {QStringLiteral("Graphics"), graphicsWords()},
            {QStringLiteral("Desktop"), desktopWords()},
            {QStringLiteral("Language"), languageWords()},
            {QStringLiteral("Qt"), QLatin1String(qVersion())},
            {QStringLiteral("ffmpeg"), toolWords()},
            {QStringLiteral("Libraries"), libraryWords()},
            {QStringLiteral("Second pass"), secondPassWords()},
            {QStringLiteral("Encoders"), encoderWords()}};
}

} // namespace tavrix
