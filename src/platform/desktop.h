// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Desktop services. Tests and the console replace them.

#include <QString>
#include <QUrl>

#include <functional>
#include <memory>

namespace tavrix
{

class DesktopServices
{
public:
    virtual ~DesktopServices() = default;
    // Each is true when the request could be handed over.
    virtual bool openUrl(const QUrl& url) = 0;                                      // with its default application
    virtual bool openFileWith(const QString& path, const QString& application) = 0; // by the application's name
    virtual bool reveal(const QString& path) = 0;                                   // selected in a file-viewer window
    // Something at the path is new or gone: views of it may be out of date.
    virtual void noteFileSystemChanged(const QString& path) = 0;
};

// The system's: everything goes to the opener program, revealing opens the folder that holds the item. Only the start
// of the opener is reported; what becomes of it is told to the listener.
[[nodiscard]] std::unique_ptr<DesktopServices>
makeSystemDesktopServices(const QString& opener = QStringLiteral("/usr/bin/xdg-open"));

// Is told, at once or a moment later, each address for which the system's services found no program. Empty: nobody is.
void setUnopenedListener(std::function<void(const QUrl& address)> listener);

// Not owned; null returns to the system's. The services are told of every guarded delete.
void setDesktopServices(DesktopServices* other);
// Those in use.
[[nodiscard]] DesktopServices& desktopServices();

// Failures of these three are logged. A leading tilde is expanded.
bool revealInFinder(const QString& path); // true for any path, false for nothing
// With its default application for "" or nothing as name. Always true.
bool openWith(const QString& path, const QString& applicationName);
void openFileFolder(const QString& path); // the folder or file itself; does nothing for "" or nothing

} // namespace tavrix
