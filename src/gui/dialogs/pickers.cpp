// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/dialogs/pickers.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "base/dialogue/runloopgate.h"
#include "base/files/filelisting.h"
#include "base/files/fileops.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/text.h"
#include "gui/widgets/windowtext.h"

#include <QFileDialog>
#include <QFileInfo>
#include <QPointer>
#include <QPushButton>

namespace tavrix
{

namespace
{

QPointer<QWidget> pickerWindow;
// Folder of the last choice of a file.
QString defaultFolder;
QList<QFileDialog*> openChoosers;
bool cancelling = false;

// A chooser that also ends with a folder: the platform's ones enter it instead.
class FileOrFolderDialog : public QFileDialog
{
public:
    using QFileDialog::QFileDialog;

    void accept() override
    {
        const QStringList chosen = selectedFiles();
        if (chosen.size() == 1 && QFileInfo(chosen.constFirst()).isDir()) {
            done(Accepted);
            return;
        }
        QFileDialog::accept();
    }
};

QStringList chosenPaths(QFileDialog& dialog, const QString& title, const QString& folder)
{
    dialog.setObjectName(QStringLiteral("fileChooser"));
    dialog.setWindowTitle(title);
    dialog.setDirectory(folder);
    if (cancelling) {
        return {};
    }
    const ModalGateCloser gate;
    openChoosers << &dialog;
    const int result = dialog.exec();
    openChoosers.removeLast();
    if (result != QDialog::Accepted) {
        return {};
    }
    QStringList paths;
    for (const QString& path : dialog.selectedFiles()) {
        if (!path.isEmpty()) {
            paths << pathByResolvingAlias(path);
        }
    }
    return paths;
}

QString startFolder()
{
    return defaultFolder.isEmpty() ? homeFolder() : defaultFolder;
}

// The kind of the files is shown instead of their patterns when it has a name.
QStringList chosenFiles(QFileDialog::FileMode mode, const QString& title, const QStringList& patterns,
                        const QString& kind = QString())
{
    QFileDialog dialog(pickerWindow);
    dialog.setFileMode(mode);
    const QString filter = patterns.join(QLatin1Char(' '));
    dialog.setOption(QFileDialog::HideNameFilterDetails, !kind.isEmpty());
    dialog.setNameFilter(kind.isEmpty() ? filter : kind + QStringLiteral(" (") + filter + QLatin1Char(')'));
    // The chooser's own menu must not rename or delete clips.
    dialog.setOption(QFileDialog::ReadOnly);
    QStringList paths = chosenPaths(dialog, title, startFolder());
    if (!paths.isEmpty()) {
        defaultFolder = stringByDeletingLastPathComponent(paths.first());
    }
    return paths;
}

QStringList chosenFolder(const QString& title, const QString& folder)
{
    QFileDialog dialog(pickerWindow);
    dialog.setFileMode(QFileDialog::Directory);
    dialog.setOption(QFileDialog::ShowDirsOnly);
    return chosenPaths(dialog, title, folder);
}

} // namespace

void setPickerWindow(QWidget* window)
{
    pickerWindow = window;
    cancelling = false;
}

void cancelPickers()
{
    cancelling = true;
    const QList<QFileDialog*> choosers = openChoosers;
    for (auto chooser = choosers.crbegin(); chooser != choosers.crend(); ++chooser) {
        (*chooser)->reject();
    }
}

QStringList selectFilePatterns(const QStringList& types)
{
    // Name filters tell upper and lower case apart here.
    QStringList patterns;
    for (const QString& type : types) {
        for (const QString& form : {type, type.toUpper(), capitalized(type)}) {
            const QString pattern = QStringLiteral("*.") + form;
            if (!patterns.contains(pattern)) {
                patterns << pattern;
            }
        }
    }
    return patterns;
}

QString selectFile(const QString& /*unused*/, const QStringList& types)
{
    const QStringList paths = chosenFiles(QFileDialog::ExistingFile, localizedString(QStringLiteral("selectFileStr")),
                                          selectFilePatterns(types));
    QString path = paths.isEmpty() ? QString() : paths.first();
    logLine(QStringLiteral("returnedStr : %@"), {path});
    return path;
}

QString selectFolder(const QString& title, const std::function<void(const QString& folder)>& refused)
{
    const QStringList paths = chosenFolder(title.isNull() ? QStringLiteral("Select a Folder") : title, homeFolder());
    if (paths.isEmpty() || droitsAcces(paths.first())) {
        return paths.value(0);
    }
    if (refused) {
        refused(paths.first());
    }
    return {};
}

std::optional<QStringList> selectFileFolder(const QString& title)
{
    FileOrFolderDialog dialog(pickerWindow);
    dialog.setFileMode(QFileDialog::ExistingFile);
    dialog.setOption(QFileDialog::DontUseNativeDialog);
    const QStringList paths =
        chosenPaths(dialog, title.isNull() ? QStringLiteral("Select a File or a Folder") : title, homeFolder());
    logLine(QStringLiteral("pathesArray : %@"), {paths});
    return paths.isEmpty() ? std::nullopt : std::optional(paths);
}

QStringList selectSources(const QString& title)
{
    return chosenFiles(QFileDialog::ExistingFiles, title, selectFilePatterns(documentTypeExtensions()),
                       windowText("Win_clipFiles"));
}

QString selectSourceFolder(const QString& title)
{
    const QStringList paths = chosenFolder(title, startFolder());
    return paths.isEmpty() ? QString() : paths.first();
}

QString dstAutoBt(const QString& path)
{
    if (path.isEmpty()) {
        return {};
    }
    const QString folder = fichier_dirname(path);
    return droitsAcces(folder) ? folder : QString();
}

} // namespace tavrix
