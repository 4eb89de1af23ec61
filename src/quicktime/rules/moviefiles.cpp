// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/moviefiles.h"

#include "base/files/filedelete.h"
#include "base/files/fileinfo.h"
#include "base/store/settings.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/roundingconversions.h"
#include "quicktime/rules/moviequeries.h"
#include "quicktime/rules/movieslots.h"

namespace tavrix
{

namespace
{

QList<int> asIntegers(const MediaSize& size)
{
    return {truncatedInt(size.width), truncatedInt(size.height)};
}

void removeTrialCopy(const QString& path)
{
    if (testPresenceCocoa(path) && !removeOwnFile(path, stringByDeletingLastPathComponent(path))) {
        logLine(QStringLiteral("nsavQtMovie         :-( not removed : %@"), {path});
    }
}

} // namespace

std::optional<QList<int>> movieSizeNaturalDisplayed(const QString& path)
{
    if (!qtkitInstantiate(path)) {
        QTMOVIErelease();
        logLine(QStringLiteral("movieSizeNaturalDisp:-( fin (echec Instantiate)"));
        return std::nullopt;
    }
    return asIntegers(getQTMOVIE()->naturalSize());
}

std::optional<QList<int>> movieSizeCurrentDisplayed(const QString& path)
{
    if (!qtkitInstantiate(path)) {
        QTMOVIErelease();
        logLine(QStringLiteral("movieSizeCurrentDisp:-( fin (echec Instantiate)"));
        return std::nullopt;
    }
    return asIntegers(getQTMOVIE()->currentSize());
}

float dureeMovie(const QString& path)
{
    if (!qtkitInstantiate(stringByExpandingTildeInPath(path))) {
        QTMOVIErelease();
        logLine(QStringLiteral("Erreur               : Movie illisible"));
        return 0.0F;
    }
    return static_cast<float>(movieDuration(*getQTMOVIE()));
}

bool movieInfosLog(const QString& path)
{
    if (!qtkitInstantiate(path)) {
        QTMOVIErelease();
        return false;
    }
    logLine(QStringLiteral("TOUS les Attributs   : %@"), {getQTMOVIE()->movieAttributes()});
    return true;
}

bool nsavQtMovie(const QString& path)
{
    if (!qtkitInstantiate(path)) {
        logLine(QStringLiteral("Erreur              : Movie illisible"));
        logLine(QStringLiteral("qt > nsavQtMovie - fin :-("));
        return true;
    }
    const std::shared_ptr<Movie> movie = getQTMOVIE();
    movieEditable(*movie);
    const QString trialPath = getTMPFOLDER() + QStringLiteral("totoTvx.mov");
    removeTrialCopy(trialPath);
    const bool written = movie->writeToFile(trialPath, WriteAttributes());
    removeTrialCopy(trialPath);
    return !written;
}

} // namespace tavrix
