// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/localisation.h"

#include "base/bundle/bundle.h"
#include "base/files/posixfile.h"
#include "base/text/log.h"
#include "base/text/textencoding.h"

#include <QDir>
#include <QHash>
#include <QLocale>
#include <QRegularExpression>

namespace tavrix
{
namespace
{

constexpr std::uint64_t largestTable = std::uint64_t{16} << 20; // bytes

using StringsTable = QMap<QString, QString>;

struct LocaliserState {
    QString chosenLanguage; // "" = the system's
    QString systemLanguage;
    QString systemLanguageFolder; // resource folder that systemLanguage was chosen for
    QHash<QString, StringsTable> tables;
    QString treeFolder; // "" = the application's
    QString treeTable = QStringLiteral("Localizable");
};

LocaliserState& state()
{
    static LocaliserState instance;
    return instance;
}

const StringsTable& tableAt(const QString& path)
{
    QHash<QString, StringsTable>& tables = state().tables;
    auto known = tables.find(path);
    if (known == tables.end()) {
        const QByteArray file = systemPath(path);
        const Result<QByteArray> bytes = readFile<QByteArray>(file, largestTable);
        const QString text = bytes ? decodedText(*bytes) : QString();
        if (text.isNull() && followedStatus(file)) {
            logLine(QStringLiteral("strings table       :-( unreadable: %@"), {path});
        }
        known = tables.insert(path, parseStringsTable(text));
    }
    return *known;
}

// Nothing when the language has no text for the key.
QString textIn(const QString& folder, const QString& language, const QString& table, const QString& key)
{
    QStringList names{table};
    if (table == QLatin1String("Localized")) {
        names.append(QStringLiteral("Localizable"));
    }
    for (const QString& name : names) {
        const QString path = folder + u'/' + language + QStringLiteral(".lproj/") + name + QStringLiteral(".strings");
        const StringsTable& texts = tableAt(path);
        const auto found = texts.constFind(key);
        if (found != texts.cend()) {
            return *found;
        }
    }
    return {};
}

QString lookUp(const QString& folder, const QString& key, const QString& table)
{
    if (key.isEmpty()) {
        return QStringLiteral("");
    }
    const QString name = table.isEmpty() ? QStringLiteral("Localizable") : table;
    QString text = textIn(folder, currentLanguage(), name, key);
    if (text.isNull()) {
        text = textIn(folder, QStringLiteral("en"), name, key);
    }
    return text.isNull() ? key : text;
}

QString unescaped(const QString& quoted)
{
    QString text(QStringLiteral(""));
    for (qsizetype index = 0; index < quoted.size(); ++index) {
        QChar character = quoted.at(index);
        if (character == u'\\' && index + 1 < quoted.size()) {
            character = quoted.at(++index);
            if (character == u'n') {
                character = u'\n';
            }
        }
        text.append(character);
    }
    return text;
}

// The part of the line outside block comments that begin a line; `inside` carries an open comment on.
QString withoutComment(const QString& line, bool* inside)
{
    QString rest = line.trimmed();
    while (*inside || rest.startsWith(QLatin1String("/*"))) {
        const qsizetype end = rest.indexOf(QLatin1String("*/"), *inside ? 0 : 2);
        *inside = end < 0;
        if (end < 0) {
            return {};
        }
        rest = rest.mid(end + 2).trimmed();
    }
    return rest;
}

} // namespace

QString localizedString(const QString& key, const QString& table)
{
    return lookUp(resourcePath(), key, table);
}

QStringList availableLanguages()
{
    QStringList languages = QDir(resourcePath()).entryList({QStringLiteral("*.lproj")}, QDir::Dirs, QDir::Name);
    for (QString& language : languages) {
        language.chop(6);
    }
    return languages;
}

QString languageFor(const QStringList& wanted, const QStringList& available)
{
    for (QString language : wanted) {
        language.replace(u'_', u'-');
        for (const QString& candidate : {language, language.section(u'-', 0, 0)}) {
            for (const QString& known : available) {
                if (candidate.compare(known, Qt::CaseInsensitive) == 0) {
                    return known;
                }
            }
        }
    }
    return QStringLiteral("en");
}

QString currentLanguage()
{
    LocaliserState& current = state();
    if (!current.chosenLanguage.isEmpty()) {
        return current.chosenLanguage;
    }
    const QString folder = resourcePath();
    if (current.systemLanguage.isEmpty() || current.systemLanguageFolder != folder) {
        current.systemLanguageFolder = folder;
        current.systemLanguage = languageFor(QLocale::system().uiLanguages(), availableLanguages());
    }
    return current.systemLanguage;
}

void setLanguage(const QString& language)
{
    LocaliserState& current = state();
    current.tables.clear();
    current.systemLanguage.clear();
    current.chosenLanguage = availableLanguages().contains(language) ? language : QString();
}

QMap<QString, QString> parseStringsTable(const QString& text)
{
    static const QRegularExpression entry(
        QString::fromLatin1(R"re(^"((?:[^"\\]|\\.)*)"\s*=\s*"((?:[^"\\]|\\.)*)"\s*;\s*(?://.*|/\*.*\*/)?$)re"));
    QMap<QString, QString> table;
    bool inside = false;
    const QStringList lines = text.split(u'\n');
    for (const QString& line : lines) {
        const QRegularExpressionMatch match = entry.match(withoutComment(line, &inside));
        if (match.hasMatch()) {
            table.insert(unescaped(match.captured(1)), unescaped(match.captured(2)));
        }
    }
    return table;
}

void FVAutoLocalizeSetBundle(const QString& resourceFolder)
{
    state().treeFolder = resourceFolder;
}

void FVAutoLocalizeSetName(const QString& table)
{
    state().treeTable = table.isEmpty() ? QStringLiteral("Localizable") : table;
}

QString localizedMarkedText(const QString& text)
{
    if (!text.startsWith(QLatin1String("@@"))) {
        return text;
    }
    const QString folder = state().treeFolder.isEmpty() ? resourcePath() : state().treeFolder;
    return lookUp(folder, text.mid(2), state().treeTable);
}

} // namespace tavrix
