// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/desktop.h"

#include "base/dialogue/replaceable.h"
#include "base/files/filedelete.h"
#include "base/text/log.h"
#include "base/text/paths.h"

#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

#include <unistd.h>

namespace tavrix
{

namespace
{

// What the opener answers when it found no program, or the one that it found failed: 1 to 4.
constexpr int lastOpenerFailure = 4;
// Where it waits for the program, that program's own end comes much later.
constexpr qint64 openerSeconds = 30;

std::function<void(const QUrl&)>& unopenedListener()
{
    static std::function<void(const QUrl&)> listener;
    return listener;
}

void tellUnopened(const QUrl& url)
{
    if (unopenedListener()) {
        unopenedListener()(url);
    }
}

class SystemDesktopServices : public DesktopServices
{
public:
    explicit SystemDesktopServices(const QString& opener) : opener_(opener) {}

    bool openUrl(const QUrl& url) override
    {
        // An address without a scheme could be taken for an option of the opener.
        if (!url.isValid() || url.scheme().isEmpty()) {
            logLine(QStringLiteral("open                :-( not an address: %@"), {url.toString(QUrl::RemoveUserInfo)});
            return false;
        }
        if (!QFileInfo(opener_).isExecutable()) {
            logLine(QStringLiteral("open                :-( cannot start %@"), {opener_});
            tellUnopened(url);
            return false;
        }
        startOpener(url);
        return true;
    }

    bool openFileWith(const QString& path, const QString& application) override
    {
        const QString program = QStandardPaths::findExecutable(application);
        if (program.isEmpty()) {
            logLine(QStringLiteral("open                :-( no application: %@"), {application});
            return false;
        }
        if (QProcess::startDetached(program, {QFileInfo(path).absoluteFilePath()})) {
            return true;
        }
        logLine(QStringLiteral("open                :-( cannot start %@"), {program});
        return false;
    }

    bool reveal(const QString& path) override
    {
        const QString absolute = QFileInfo(path).absoluteFilePath();
        return openUrl(QUrl::fromLocalFile(stringByDeletingLastPathComponent(absolute)));
    }

    void noteFileSystemChanged(const QString& /*path*/) override {}

private:
    void startOpener(const QUrl& url) const
    {
        // Nobody owns it: whoever deletes one that runs ends the program that it has opened.
        auto* const process = new QProcess;
        process->setChildProcessModifier([] { ::setsid(); });
        process->setStandardInputFile(QProcess::nullDevice());
        process->setStandardOutputFile(QProcess::nullDevice());
        process->setStandardErrorFile(QProcess::nullDevice());
        QElapsedTimer clock;
        clock.start();
        const auto over = [process, url, clock](bool failed) {
            if (failed && clock.elapsed() < openerSeconds * 1000) {
                logLine(QStringLiteral("open                :-( nothing opens %@"),
                        {url.toString(QUrl::RemoveUserInfo | QUrl::RemoveQuery)});
                tellUnopened(url);
            }
            process->deleteLater();
        };
        QObject::connect(process, &QProcess::finished, process, [over](int code, QProcess::ExitStatus status) {
            over(status == QProcess::NormalExit && code > 0 && code <= lastOpenerFailure);
        });
        QObject::connect(process, &QProcess::errorOccurred, process, [over](QProcess::ProcessError error) {
            if (error == QProcess::FailedToStart) {
                over(true);
            }
        });
        process->start(opener_, {url.toString(QUrl::FullyEncoded)});
    }

    QString opener_;
};

Replaceable<DesktopServices>& services()
{
    static Replaceable<DesktopServices> instance([] { return makeSystemDesktopServices(); });
    return instance;
}

} // namespace

std::unique_ptr<DesktopServices> makeSystemDesktopServices(const QString& opener)
{
    return std::make_unique<SystemDesktopServices>(opener);
}

void setUnopenedListener(std::function<void(const QUrl& address)> listener)
{
    unopenedListener() = std::move(listener);
}

void setDesktopServices(DesktopServices* other)
{
    services().replace(other);
    setDeletionObserver([](const QString& path) { desktopServices().noteFileSystemChanged(path); });
}

DesktopServices& desktopServices()
{
    return services().inUse();
}

bool revealInFinder(const QString& path)
{
    if (path.isNull()) {
        return false;
    }
    if (!desktopServices().reveal(stringByExpandingTildeInPath(path))) {
        logLine(QStringLiteral("reveal              :-( %@"), {path});
    }
    return true;
}

bool openWith(const QString& path, const QString& applicationName)
{
    if (path.isEmpty()) {
        return true;
    }
    const QString file = stringByExpandingTildeInPath(path);
    const bool opened = applicationName.isEmpty() ? desktopServices().openUrl(QUrl::fromLocalFile(file))
                                                  : desktopServices().openFileWith(file, applicationName);
    if (!opened) {
        logLine(QStringLiteral("openWith            :-( %@"), {path});
    }
    return true;
}

void openFileFolder(const QString& path)
{
    if (path.isEmpty()) {
        return;
    }
    logLine(QStringLiteral("pathStr : %@"), {path});
    if (!desktopServices().openUrl(QUrl::fromLocalFile(stringByExpandingTildeInPath(path)))) {
        logLine(QStringLiteral("openFileFolder      :-( %@"), {path});
    }
}

} // namespace tavrix
