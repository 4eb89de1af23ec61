// SPDX-License-Identifier: GPL-3.0-or-later
#include "encode/presets.h"

#include "base/bundle/bundle.h"
#include "base/dialogue/alerts.h"
#include "base/dialogue/textfiles.h"
#include "base/files/fileinfo.h"
#include "base/store/settings.h"
#include "base/text/listconversions.h"
#include "base/text/log.h"
#include "base/text/paths.h"
#include "base/text/text.h"

namespace tavrix
{

namespace
{

// The folder that holds the presets, nothing when no candidate exists.
QString presetFolder(const QString& folder)
{
    const QStringList candidates = {folder, stringByAppendingPathComponent(resourcePath(), folder), toolPath(folder),
                                    stringByAppendingPathComponent(supportFolder(), folder)};
    for (const QString& candidate : candidates) {
        if (testPresenceCocoa(candidate)) {
            return candidate;
        }
    }
    return {};
}

} // namespace

QStringList presetOptions(const QString& text)
{
    QStringList options;
    for (const QString& line : linesToArray(text)) {
        const bool comment = line.contains(QLatin1String("/*")) && line.contains(QLatin1String("*/"));
        const QStringList pieces = componentsSeparated(line, QStringLiteral("="));
        if (!comment && pieces.size() > 1) {
            options.append(formatText(QStringLiteral("-%@"), {pieces.at(0)}));
            options.append(pieces.at(1));
        }
    }
    return options;
}

std::optional<QStringList> ffpresetParserFunction(const QString& folder, const QString& file)
{
    if (folder.isNull() || file.isNull()) {
        return std::nullopt;
    }
    const QString found = presetFolder(folder);
    if (found.isNull()) {
        // The texts name neither folder nor file.
        if (getDEBUG() != 0) {
            displayAlert(
                QStringLiteral("oups!"),
                formatText(QStringLiteral("Le dossier de presets n'existe pas :-( '%@/%@'"), {QString(), QString()}), 0,
                nullptr);
        }
        logLine(QStringLiteral("oups! Le dossier de presets n'existe pas :-( '%@%@'"), {QString(), QString()});
        return std::nullopt;
    }
    const QString path = stringByAppendingPathComponent(found, file);
    logLine(QStringLiteral("tmpStr def : %@"), {path});
    if (!testPresenceCocoa(path)) {
        return std::nullopt;
    }
    const QStringList options = presetOptions(readContentsTxtUTF8(path));
    logLine(QStringLiteral("returnedMArray : %@"), {options});
    return options;
}

} // namespace tavrix
