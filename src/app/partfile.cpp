// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/partfile.h"

#include "app/batchlist.h"
#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/files/fileops.h"
#include "base/store/settings.h"
#include "base/text/log.h"

#include <QCoreApplication>

#include <algorithm>

namespace tavrix
{

namespace
{

QString folder()
{
    return getTMPFOLDER() + QStringLiteral("part/");
}

// Exact enough for a picture of any rate.
QString secondsText(double seconds)
{
    constexpr int decimals = 6;
    return QString::number(seconds, 'f', decimals);
}

// The record counts whole seconds.
double convertedSeconds(double whole, const ClipPart& part)
{
    return std::max(0.0, std::min(part.to.value_or(whole), whole + 1) - part.from);
}

} // namespace

QString PartFile::path()
{
    return folder() + QStringLiteral("part.mov");
}

QStringList PartFile::begin(const QString& source, const ClipPart& part)
{
    remove();
    begun_ = true;
    mkdirCocoa(folder());
    QStringList arguments{QCoreApplication::applicationDirPath() + QStringLiteral("/tavrix-inspect"),
                          QStringLiteral("--export"),
                          QStringLiteral("mov"),
                          QStringLiteral("--progress"),
                          QStringLiteral("--from"),
                          secondsText(part.from)};
    if (part.to) {
        arguments << QStringLiteral("--to") << secondsText(*part.to);
    }
    return arguments << QStringLiteral("--output") << path() << QStringLiteral("--") << source;
}

bool PartFile::isMade() const
{
    return begun_ && testPresenceCocoa(path());
}

void PartFile::remove()
{
    if (begun_ && !removeOwnFolder(folder())) {
        logLine(QStringLiteral("part                :-( not removed : %@"), {folder()});
    }
    begun_ = false;
}

QString partText(const ClipPart& part)
{
    const QString text = clipTimeText(part.from) + QStringLiteral(" -");
    return part.to ? text + QLatin1Char(' ') + clipTimeText(*part.to) : text;
}

QString storedPart(const std::optional<ClipPart>& part)
{
    if (!part) {
        return QStringLiteral("");
    }
    return secondsText(part->from) + QLatin1Char('-') + (part->to ? secondsText(*part->to) : QString());
}

std::optional<ClipPart> partOfStored(const QString& text)
{
    const QStringList ends = text.split(QLatin1Char('-'));
    const std::optional<double> from = clipTime(ends.value(0));
    const std::optional<double> to = clipTime(ends.value(1));
    if (ends.size() != 2 || !from || (!to && !ends.at(1).isEmpty())) {
        return std::nullopt;
    }
    const ClipPart part{*from, to};
    return part.isPossible() ? std::optional(part) : std::nullopt;
}

MediaInfoRecord convertedRecord(const BatchRow& row)
{
    MediaInfoRecord record = row.dico;
    if (row.part) {
        const double whole = record.value(record::w_duration).toDouble();
        record.insert(record::w_duration, convertedSeconds(whole, *row.part));
    }
    return record;
}

double convertedShare(const BatchRow& row)
{
    const double whole = row.dico.value(record::w_duration).toDouble();
    return row.part && whole > 0 ? std::min(1.0, convertedSeconds(whole, *row.part) / whole) : 1;
}

} // namespace tavrix
