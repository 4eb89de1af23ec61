// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/network.h"

#include "base/text/log.h"
#include "base/text/paths.h"
#include "platform/desktop.h"
#include "platform/pagefetch.h"

#include <algorithm>

namespace tavrix
{

namespace
{

// Text of an ASCII page; nothing when none came back. An empty page is a page.
QString asciiPage(const QString& address)
{
    const std::optional<QByteArray> page = fetchPage(QUrl(address, QUrl::StrictMode));
    if (!page) {
        return {};
    }
    const bool ascii = std::all_of(page->cbegin(), page->cend(), [](char c) { return static_cast<uchar>(c) < 128; });
    return ascii ? QString(QLatin1String(page->isEmpty() ? "" : page->constData(), page->size())) : QString();
}

// Passwords in an address stay out of the log.
QString loggedAddress(const QString& address)
{
    return QUrl(address).toString(QUrl::RemoveUserInfo);
}

} // namespace

void openLocation(const QString& address)
{
    if (address.isNull()) {
        return;
    }
    const QUrl url(address, QUrl::StrictMode);
    if (!isWebAddress(url)) {
        logLine(QStringLiteral("openLocation        :-( not a web address: %@"), {loggedAddress(address)});
        return;
    }
    if (!desktopServices().openUrl(url)) {
        logLine(QStringLiteral("openLocation        :-( %@"), {loggedAddress(address)});
    }
}

bool internetConnexionCheck(const QString& address)
{
    if (address.isNull()) {
        return false;
    }
    logDebug(QStringLiteral("internetConnexionChe- deb: %@"), {lastPathComponent(loggedAddress(address))});
    const QString page = asciiPage(address);
    logDebug(QStringLiteral("internetConnexionChe- fin: srcPageStr == %@"), {page});
    return !page.isNull();
}

QString webpageSource(const QString& address, unsigned char verbose)
{
    if (address.isNull()) {
        return {};
    }
    if (verbose != 0) {
        logDebug(QStringLiteral("WebClass source_webpa- debut (%@)"), {loggedAddress(address)});
    }
    const QString page = asciiPage(address);
    if (verbose != 0) {
        logDebug(QStringLiteral("WebClass source_webpa- fin"));
    }
    logDev(QStringLiteral("WebClass source_webpa- fin : %@"), {page});
    return page.isNull() ? QString(QLatin1String("")) : page;
}

} // namespace tavrix
