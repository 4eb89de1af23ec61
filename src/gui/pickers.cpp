#include "gui/pickers.h"

#include "base/bundle.h"
#include "base/filelisting.h"
#include "base/fileops.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/paths.h"
#include "base/runloopgate.h"
#include "base/text.h"

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
    const ModalGateCloser gate;
    if (dialog.exec() != QDialog::Accepted) {
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

QStringList chosenFiles(QFileDialog::FileMode mode, const QString& title, const QStringList& patterns)
{
    QFileDialog dialog(pickerWindow);
    dialog.setFileMode(mode);
    dialog.setNameFilter(patterns.join(QLatin1Char(' ')));
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

QString selectFolder(const QString& title)
{
    const QStringList paths = chosenFolder(title.isNull() ? QStringLiteral("Select a Folder") : title, homeFolder());
    return paths.isEmpty() || !droitsAcces(paths.first()) ? QString() : paths.first();
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
    return chosenFiles(QFileDialog::ExistingFiles, title, selectFilePatterns(documentTypeExtensions()));
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
