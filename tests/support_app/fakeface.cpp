// SPDX-License-Identifier: GPL-3.0-or-later
#include "support_app/fakeface.h"

namespace tavrix::test
{

FakeFace::FakeFace()
{
    setAlertPresenter(this);
    setDesktopServices(this);
}

FakeFace::~FakeFace()
{
    setAlertPresenter(nullptr);
    setDesktopServices(nullptr);
}

void FakeFace::answer(int button, bool checked)
{
    answers.push_back([button, checked](const AlertRequest&) { return AlertOutcome{button, checked}; });
}

QString FakeFace::selectFolder(const QString& /*title*/)
{
    events << QStringLiteral("choose");
    return folders.isEmpty() ? QString() : folders.takeFirst();
}

void FakeFace::ecran(const QString& side, float delta)
{
    events << QStringLiteral("ecran:") + side + u' ' + QString::number(static_cast<int>(delta));
}

void FakeFace::showHelp()
{
    helpVisible = true;
    events << QStringLiteral("help shown");
}

void FakeFace::hideHelp()
{
    helpVisible = false;
    events << QStringLiteral("help hidden");
}

AlertOutcome FakeFace::runModal(const AlertRequest& request)
{
    events << QStringLiteral("alert:") + request.title;
    alerts << request;
    if (whileOpen) {
        whileOpen(request);
    }
    if (!answers.empty()) {
        const Answer next = answers.front();
        answers.pop_front();
        return next(request);
    }
    return otherwise ? otherwise(request) : AlertOutcome{};
}

void FakeFace::showSheet(const AlertRequest& request, QObject* window, std::function<void(AlertOutcome)> done)
{
    events << (window == &window_ ? QStringLiteral("sheet:") : QStringLiteral("sheet elsewhere:")) + request.title;
    alerts << request;
    if (done) {
        done({});
    }
}

std::optional<QString> FakeFace::runTextInput(const AlertRequest& request, const QString& defaultValue)
{
    events << QStringLiteral("input:") + request.title;
    return defaultValue;
}

bool FakeFace::openUrl(const QUrl& url)
{
    events << QStringLiteral("open:") + (url.isLocalFile() ? url.toLocalFile() : url.toString(QUrl::FullyEncoded));
    return desktopWorks;
}

bool FakeFace::openFileWith(const QString& path, const QString& application)
{
    events << QStringLiteral("open with ") + application + u':' + path;
    return desktopWorks;
}

bool FakeFace::reveal(const QString& path)
{
    events << QStringLiteral("reveal:") + path;
    return desktopWorks;
}

} // namespace tavrix::test
