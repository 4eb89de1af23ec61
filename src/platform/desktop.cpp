// SPDX-License-Identifier: GPL-3.0-or-later
#include "platform/desktop.h"

#include "base/dialogue/replaceable.h"
#include "base/files/filedelete.h"
#include "base/text/log.h"
#include "base/text/paths.h"

#include <QFileInfo>
#include <QProcess>
#include <QStandardPaths>

namespace tavrix
{

namespace
{

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
        return start(opener_, url.toString(QUrl::FullyEncoded));
    }

    bool openFileWith(const QString& path, const QString& application) override
    {
        const QString program = QStandardPaths::findExecutable(application);
        if (program.isEmpty()) {
            logLine(QStringLiteral("open                :-( no application: %@"), {application});
            return false;
        }
        return start(program, QFileInfo(path).absoluteFilePath());
    }

    bool reveal(const QString& path) override
    {
        const QString absolute = QFileInfo(path).absoluteFilePath();
        return openUrl(QUrl::fromLocalFile(stringByDeletingLastPathComponent(absolute)));
    }

    void noteFileSystemChanged(const QString& /*path*/) override {}

private:
    static bool start(const QString& program, const QString& argument)
    {
        if (QProcess::startDetached(program, {argument})) {
            return true;
        }
        logLine(QStringLiteral("open                :-( cannot start %@"), {program});
        return false;
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
