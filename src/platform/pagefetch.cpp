#include "platform/pagefetch.h"

#include "base/log.h"

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
};

// Runs in the worker thread, with everything of Qt's that it needs created there.
Fetched fetchHere(const QUrl& url, const FetchLimits& limits)
{
    QNetworkAccessManager manager;
    QNetworkRequest request(url);
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute, QNetworkRequest::UserVerifiedRedirectPolicy);
    request.setMaximumRedirectsAllowed(limits.redirects);
    const std::unique_ptr<QNetworkReply> reply(manager.get(request));

    QEventLoop loop;
    QByteArray page;
    QString stopped;
    const auto stop = [&](const QString& reason) {
        if (stopped.isNull())
            stopped = reason;
        reply->abort();
        // An abort in the middle of a redirection is not always followed by the end of the reply.
        loop.quit();
    };
    const auto take = [&] {
        page += reply->readAll();
        if (page.size() > limits.bytes)
            stop(QStringLiteral("too large"));
    };
    QObject::connect(reply.get(), &QNetworkReply::redirected, &loop, [&](const QUrl& target) {
        if (!isWebAddress(target))
            stop(QStringLiteral("redirected elsewhere"));
        else
            Q_EMIT reply->redirectAllowed();
    });
    QObject::connect(reply.get(), &QNetworkReply::readyRead, &loop, take);
    QObject::connect(reply.get(), &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QObject::connect(reply.get(), &QNetworkReply::errorOccurred, &loop, &QEventLoop::quit);
    QTimer::singleShot(limits.milliseconds, &loop, [&] { stop(QStringLiteral("timed out")); });
    if (!reply->isFinished())
        loop.exec();
    if (stopped.isNull() && reply->isOpen())
        take();

    if (!stopped.isNull())
        return {std::nullopt, stopped};
    if (reply->error() != QNetworkReply::NoError)
        return {std::nullopt, QStringLiteral("error %1").arg(static_cast<int>(reply->error()))};
    // A reply that is sent round in circles can end without an error and without an answer.
    const int status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status < 200 || status > 299)
        return {std::nullopt, QStringLiteral("status %1").arg(status)};
    return {page, QString()};
}

} // namespace

bool isWebAddress(const QUrl& url)
{
    return url.isValid() && !url.host().isEmpty() &&
           (url.scheme() == QLatin1String("http") || url.scheme() == QLatin1String("https"));
}

std::optional<QByteArray> fetchPage(const QUrl& url, const FetchLimits& limits)
{
    if (!isWebAddress(url))
        return std::nullopt;
    Fetched fetched;
    const std::unique_ptr<QThread> worker(QThread::create([&] { fetched = fetchHere(url, limits); }));
    worker->start();
    worker->wait();
    if (!fetched.page)
        logDebug(QStringLiteral("page                :-( %@: %@"), {url.host(), fetched.failure});
    return fetched.page;
}

} // namespace tavrix
