// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/pagefetch.h"

#include "base/text/log.h"

#include <QDeadlineTimer>
#include <QEventLoop>
#include <QNetworkAccessManager>
#include <QNetworkReply>
#include <QThread>
#include <QTimer>

#include <memory>

namespace tavrix
{

namespace
{

struct Fetched {
    std::optional<QByteArray> page;
    QString failure;
    QUrl redirectedTo; // empty for an answer that is the page or a failure
};

Fetched failedFetch(const QString& reason)
{
    return {std::nullopt, reason, {}};
}

Fetched fetchedAnswer(const QNetworkReply& reply, const QByteArray& page)
{
    if (reply.error() != QNetworkReply::NoError) {
        return failedFetch(QStringLiteral("error %1").arg(static_cast<int>(reply.error())));
    }
    const QUrl target = reply.attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (!target.isEmpty()) {
        return {std::nullopt, QString(), reply.url().resolved(target)};
    }
    const int status = reply.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status < 200 || status > 299) {
        return failedFetch(QStringLiteral("status %1").arg(status));
    }
    return {page, QString(), {}};
}

// One request and its answer; a redirection is told, not followed.
Fetched fetchOnce(QNetworkAccessManager& manager, const QUrl& url, const QDeadlineTimer& deadline, qint64 bytes)
{
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::ManualRedirectPolicy);
    const std::unique_ptr<QNetworkReply> reply(manager.get(request));

    QEventLoop loop;
    QByteArray page;
    QString stopped;
    const auto stop = [&](const QString& reason) {
        if (stopped.isNull()) {
            stopped = reason;
        }
        loop.quit();
    };
    const auto take = [&] {
        page += reply->readAll();
        if (page.size() > bytes) {
            stop(QStringLiteral("too large"));
        }
    };
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, take);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(deadline.remainingTime(), &loop, [&] { stop(QStringLiteral("timed out")); });
    if (!reply->isFinished()) {
        loop.exec();
    }
    if (stopped.isNull() && reply->isOpen()) {
        take();
    }
    return stopped.isNull() ? fetchedAnswer(*reply, page) : failedFetch(stopped);
}

// Runs in the worker thread, with everything of Qt's that it needs created there. Redirections are followed here, one
// request after the other: when Qt follows them itself, an answer is now and then never reported as finished.
Fetched fetchHere(const QUrl& url, const FetchLimits& limits)
{
    QNetworkAccessManager manager;
    const QDeadlineTimer deadline(limits.milliseconds);
    QUrl next = url;
    for (int redirects = 0; redirects <= limits.redirects; ++redirects) {
        Fetched fetched = fetchOnce(manager, next, deadline, limits.bytes);
        if (fetched.redirectedTo.isEmpty()) {
            return fetched;
        }
        if (!isWebAddress(fetched.redirectedTo)) {
            return failedFetch(QStringLiteral("redirected elsewhere"));
        }
        next = fetched.redirectedTo;
    }
    return failedFetch(QStringLiteral("redirected too often"));
}

} // namespace

bool isWebAddress(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"));
}

std::optional<QByteArray> fetchPage(const QUrl& url, const FetchLimits& limits)
{
    if (!isWebAddress(url)) {
        return std::nullopt;
    }
    Fetched fetched;
    const std::unique_ptr<QThread> worker(QThread::create([&] { fetched = fetchHere(url, limits); }));
    worker->start();
    worker->wait();
    if (!fetched.page) {
        logDebug(QStringLiteral("page                :-( %@: %@"), {url.host(), fetched.failure});
    }
    return fetched.page;
}

} // namespace tavrix
