// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/dialogue/localisation.h"
#include "support/qtprinters.h"
#include "testpaths.h"

#include <QDir>
#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>

#include <cstring>

namespace tavrix::test
{
namespace
{

const QString resources = QStringLiteral(TAVRIX_SOURCE_DIR "/resources/");

QString contents(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QMap<QString, QString> table(const QString& language, const QString& name)
{
    return parseStringsTable(contents(resources + language + QStringLiteral(".lproj/") + name));
}

// Everything that may name a key: the sources and the help's drawings.
QString sources()
{
    QString all;
    for (const QString& folder :
         {QStringLiteral(TAVRIX_SOURCE_DIR "/src"), resources + QStringLiteral("help/slides")}) {
        QDirIterator files(folder, {QStringLiteral("*.cpp"), QStringLiteral("*.h"), QStringLiteral("*.svg")},
                           QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext()) {
            all += contents(files.next());
        }
    }
    return all;
}

QStringList placeholders(const QString& text)
{
    static const QRegularExpression pattern(QStringLiteral("%(?:%|[-0-9.]*(?:ll)?[@dfisux])"));
    QStringList found;
    for (auto match = pattern.globalMatch(text); match.hasNext();) {
        found << match.next().captured();
    }
    return found;
}

// A key is used by its name, or by the beginning that a number or an image's name is added to.
bool isUsed(const QString& key, const QString& all)
{
    static const QRegularExpression number(QStringLiteral("-?[0-9]+"));
    QString formatted = key;
    formatted.replace(number, QStringLiteral("%d"));
    QString numbered = key;
    numbered.replace(number, QStringLiteral("%1"));
    const QString image = QStringLiteral("Win_image_");
    if (const QString one = QStringLiteral("_one"); key.endsWith(one)) {
        return isUsed(key.chopped(one.size()), all);
    }
    return all.contains(QLatin1Char('"') + key + QLatin1Char('"')) || all.contains(QStringLiteral("@@") + key) ||
           (formatted != key &&
            (all.contains(formatted + QLatin1Char('"')) || all.contains(numbered + QLatin1Char('"')))) ||
           (key.startsWith(image) && all.contains(image + QLatin1Char('"')));
}

class StringTables : public testing::TestWithParam<const char*>
{
};

} // namespace

TEST_P(StringTables, AllLanguagesHoldTheSameKeysAndPlaceholders)
{
    const QString name = QString::fromLatin1(GetParam());
    const QMap<QString, QString> english = table(QStringLiteral("en"), name);
    ASSERT_FALSE(english.isEmpty());
    for (const char* language : {"fr", "de"}) {
        SCOPED_TRACE(language);
        const QMap<QString, QString> other = table(QLatin1String(language), name);
        EXPECT_TEXTS(other.keys(), english.keys());
        for (auto entry = english.cbegin(); entry != english.cend(); ++entry) {
            EXPECT_FALSE(entry.value().isEmpty()) << entry.key().toStdString();
            EXPECT_FALSE(other.value(entry.key()).isEmpty()) << entry.key().toStdString();
            EXPECT_EQ(placeholders(other.value(entry.key())), placeholders(entry.value())) << entry.key().toStdString();
        }
    }
}

// French has its own apostrophe and quotation marks, and a space that does not break before a double sign.
TEST_P(StringTables, FrenchIsSetAsItIsWritten)
{
    static const QRegularExpression wrong(QStringLiteral("'|\"| [;?!»]| :(?:\\s|$)|« "));
    const QMap<QString, QString> french = table(QStringLiteral("fr"), QString::fromLatin1(GetParam()));
    for (auto entry = french.cbegin(); entry != french.cend(); ++entry) {
        // The usage shows what is typed, and stands in columns.
        if (!entry.key().endsWith(QStringLiteral("_usage"))) {
            EXPECT_FALSE(wrong.match(entry.value()).hasMatch())
                << entry.key().toStdString() << ": " << entry.value().toStdString();
        }
    }
}

TEST_P(StringTables, EveryKeyIsUsedSomewhere)
{
    static const QString all = sources();
    ASSERT_FALSE(all.isEmpty());
    QStringList unused;
    for (const QString& key : table(QStringLiteral("en"), QString::fromLatin1(GetParam())).keys()) {
        if (!isUsed(key, all)) {
            unused << key;
        }
    }
    EXPECT_TEXTS(unused, QStringList());
}

INSTANTIATE_TEST_SUITE_P(Tables, StringTables,
                         testing::Values("Window.strings", "Localizable.strings", "Batch.strings", "Console.strings",
                                         "Inspect.strings"),
                         [](const auto& entry) { return std::string(entry.param, std::strchr(entry.param, '.')); });

// The other way round: what the window asks for is there.
TEST(WindowTexts, EveryKeyThatTheWindowAsksForExists)
{
    const QMap<QString, QString> english = table(QStringLiteral("en"), QStringLiteral("Window.strings"));
    static const QRegularExpression named(QStringLiteral("(?:@@|\")(Win_[A-Za-z0-9_]+)\""));
    QStringList missing;
    const QString all = sources();
    for (auto match = named.globalMatch(all); match.hasNext();) {
        const QString key = match.next().captured(1);
        if (!english.contains(key) && key != QStringLiteral("Win_image_")) {
            missing << key;
        }
    }
    EXPECT_TEXTS(missing, QStringList());
}

} // namespace tavrix::test
