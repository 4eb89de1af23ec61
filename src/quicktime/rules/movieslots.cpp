// SPDX-License-Identifier: GPL-3.0-or-later
#include "quicktime/rules/movieslots.h"

#include "base/files/fileinfo.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "quicktime/av/activelibrary.h"

#include <QStringList>

namespace tavrix
{

namespace
{

struct MovieSlot {
    std::shared_ptr<Movie> movie;
    QString path;

    void release()
    {
        if (movie == nullptr) {
            return;
        }
        movie.reset();
        path = QString();
    }
};

MovieSlot& currentSlot()
{
    static MovieSlot slot;
    return slot;
}

MovieSlot& viewSlot()
{
    static MovieSlot slot;
    return slot;
}

// Large files of these kinds took the media library long to index; the window should not wait for it.
bool mayOpenAsynchronously(const QString& path)
{
    constexpr double largeMegabytes = 100.0;
    const QStringList slowKinds{QStringLiteral("flv"), QStringLiteral("mkv"), QStringLiteral("avi")};
    return slowKinds.contains(pathExtension(path)) && poidsFile(path, QStringLiteral("m")) > largeMegabytes;
}

} // namespace

std::shared_ptr<Movie> getQTMOVIE()
{
    return currentSlot().movie;
}

QString getQTMOVIESTR()
{
    return currentSlot().path;
}

std::shared_ptr<Movie> getQTMOVIEVIEW()
{
    return viewSlot().movie;
}

QString getQTMOVIEVIEWSTR()
{
    return viewSlot().path;
}

void setQTMOVIE(const std::shared_ptr<Movie>& movie)
{
    currentSlot().movie = movie;
}

void setQTMOVIESTR(const QString& path)
{
    currentSlot().path = path;
}

void setQTMOVIEVIEW(const std::shared_ptr<Movie>& movie)
{
    viewSlot().movie = movie;
}

void setQTMOVIEVIEWSTR(const QString& path)
{
    viewSlot().path = path;
}

void QTMOVIErelease()
{
    currentSlot().release();
}

void QTMOVIEVIEWrelease()
{
    viewSlot().release();
}

QString ac_qtMovieviewPathStr()
{
    QString path = getQTMOVIEVIEWSTR();
    logDebug(QStringLiteral("QTMOVIEVIEWSTR : %@"), {path.isEmpty() ? QStringLiteral("nil") : path});
    return path;
}

bool qtkitInstantiate(const QString& path)
{
    if (path.isNull()) {
        return false;
    }
    if (!testPresenceCocoa(path)) {
        logLine(QStringLiteral("qt qtkitInstantiate :-( fin - no file at path : %@"), {path});
        QTMOVIErelease();
        return false;
    }
    if (getQTMOVIE() != nullptr) {
        const QString opened = getQTMOVIESTR();
        if (!opened.isNull() && opened == path) {
            logDebug(QStringLiteral("re-utilisation      : %@"), {path});
            return true;
        }
        QTMOVIErelease();
    }
    std::shared_ptr<Movie> movie = mediaLibrary().movieWithFile(path, mayOpenAsynchronously(path));
    if (movie == nullptr) {
        logLine(QStringLiteral("Erreur instantiate  : le fichier n'existe pas OU pas lisible OU echec"));
        QTMOVIErelease();
        logLine(QStringLiteral("qt qtkitInstantia:-( fin - failure"));
        return false;
    }
    setQTMOVIE(movie);
    setQTMOVIESTR(path);
    logDebug(QStringLiteral("nouveau             :-) %@"), {path});
    return true;
}

std::shared_ptr<Movie> qtkitMovieInstantiateAsync(const QString& path)
{
    return path.isNull() ? nullptr : mediaLibrary().movieWithFile(path, false);
}

bool qtkitMovieviewInstantiate(const QString& path)
{
    if (path.isNull()) {
        return false;
    }
    if (getQTMOVIEVIEW() != nullptr) {
        if (getQTMOVIEVIEWSTR() == path) {
            return true;
        }
        QTMOVIEVIEWrelease();
    }
    if (!qtkitInstantiate(path)) {
        return false;
    }
    setQTMOVIEVIEW(getQTMOVIE());
    return true;
}

} // namespace tavrix
