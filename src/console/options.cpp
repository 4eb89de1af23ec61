// SPDX-License-Identifier: GPL-3.0-or-later
#include "console/options.h"

#include "app/windowmodel.h"
#include "base/text/format.h"
#include "console/consoletext.h"

#include <QHash>

namespace tavrix
{

namespace
{

void setWrong(ConsoleOptions& options, const QString& error)
{
    if (options.mode != ConsoleOptions::Mode::Wrong) {
        options.mode = ConsoleOptions::Mode::Wrong;
        options.error = error;
    }
}

void takeFormat(ConsoleOptions& options, const QString& value)
{
    bool ok = false;
    const int format = value.toInt(&ok);
    if (!ok || !isOutputFormat(format)) {
        setWrong(options, formatText(consoleText("Con_badFormat"), {value, outputFormatCount - 1}));
        return;
    }
    options.format = format;
}

void takeExisting(ConsoleOptions& options, const QString& value)
{
    if (value == QLatin1String("replace")) {
        options.existing = ExistingPolicy::Replace;
    } else if (value == QLatin1String("keep")) {
        options.existing = ExistingPolicy::Keep;
    } else if (value == QLatin1String("skip")) {
        options.existing = ExistingPolicy::Skip;
    } else if (value == QLatin1String("ask")) {
        options.existing = ExistingPolicy::Ask;
    } else {
        setWrong(options, formatText(consoleText("Con_badExisting"), {value}));
    }
}

void takeTime(ConsoleOptions& options, const QString& name, const QString& value)
{
    if (!takePartTime(options.part, name, value)) {
        setWrong(options, formatText(consoleText("Con_badTime"), {name, value}));
    }
}

void takeValue(ConsoleOptions& options, const QString& name, const QString& value)
{
    if (name == QLatin1String("--format")) {
        takeFormat(options, value);
    } else if (name == QLatin1String("--existing")) {
        takeExisting(options, value);
    } else if (name == QLatin1String("--from") || name == QLatin1String("--to")) {
        takeTime(options, name, value);
    } else if (value.isEmpty()) {
        setWrong(options, formatText(consoleText("Con_missingValue"), {name}));
    } else {
        options.output = value;
    }
}

// An empty word, as an unset shell variable leaves it, would stand for the whole current folder.
void takeSource(ConsoleOptions& options, const QString& word)
{
    if (word.isEmpty()) {
        setWrong(options, consoleText("Con_noSource"));
        return;
    }
    options.sources << word;
}

bool takesValue(const QString& name)
{
    return name == QLatin1String("--format") || name == QLatin1String("--output") ||
           name == QLatin1String("--existing") || name == QLatin1String("--from") || name == QLatin1String("--to");
}

// The long name of an option's letter; nothing for a letter that is none.
QString longName(QChar letter)
{
    static const QHash<QChar, QString> names = {
        {u'f', QStringLiteral("--format")},  {u'o', QStringLiteral("--output")},  {u'q', QStringLiteral("--quiet")},
        {u'v', QStringLiteral("--verbose")}, {u'n', QStringLiteral("--dry-run")}, {u'h', QStringLiteral("--help")}};
    return names.value(letter);
}

void takeFlagWord(ConsoleOptions& options, const QString& word)
{
    if (word == QLatin1String("--json")) {
        options.json = true;
    } else if (word == QLatin1String("--dry-run")) {
        options.dryRun = true;
    } else if (word == QLatin1String("--quiet")) {
        options.verbosity = Verbosity::Quiet;
    } else if (word == QLatin1String("--verbose")) {
        options.verbosity = Verbosity::Verbose;
    } else if (word == QLatin1String("--system")) {
        options.mode = ConsoleOptions::Mode::System;
    } else if (word == QLatin1String("--help")) {
        options.mode = ConsoleOptions::Mode::Help;
    } else if (word == QLatin1String("--version")) {
        options.mode = ConsoleOptions::Mode::Version;
    } else {
        setWrong(options, formatText(consoleText("Con_unknownOption"), {word}));
    }
}

// The words that are not read yet.
class Words
{
public:
    explicit Words(const QStringList& words) : words_(words) {}

    [[nodiscard]] bool atEnd() const { return next_ == words_.size(); }
    [[nodiscard]] const QString& take() { return words_.at(next_++); }

private:
    const QStringList& words_;
    qsizetype next_ = 0;
};

// The value of an option that stands alone is the next word.
void takeNextWord(ConsoleOptions& options, const QString& name, const QString& typed, Words& words)
{
    if (words.atEnd()) {
        setWrong(options, formatText(consoleText("Con_missingValue"), {typed}));
    } else {
        takeValue(options, name, words.take());
    }
}

void takeLong(ConsoleOptions& options, const QString& word, Words& words)
{
    const qsizetype equals = word.indexOf(QLatin1Char('='));
    const QString name = equals < 0 ? word : word.left(equals);
    if (!takesValue(name)) {
        takeFlagWord(options, word);
    } else if (equals >= 0) {
        takeValue(options, name, word.mid(equals + 1));
    } else {
        takeNextWord(options, name, name, words);
    }
}

void takeLetters(ConsoleOptions& options, const QString& word, Words& words)
{
    for (qsizetype i = 1; i < word.size(); ++i) {
        const QString typed = QStringLiteral("-") + word.at(i);
        const QString name = longName(word.at(i));
        if (name.isNull()) {
            setWrong(options, formatText(consoleText("Con_unknownOption"), {typed}));
            return;
        }
        if (!takesValue(name)) {
            takeFlagWord(options, name);
            continue;
        }
        if (const QString rest = word.mid(i + 1); !rest.isEmpty()) {
            takeValue(options, name, rest);
        } else {
            takeNextWord(options, name, typed, words);
        }
        return;
    }
}

} // namespace

ConsoleOptions parseConsoleOptions(const QStringList& words)
{
    ConsoleOptions options;
    Words rest(words);
    bool onlySources = false;
    while (!rest.atEnd()) {
        const QString word = rest.take();
        if (onlySources || !word.startsWith(QLatin1Char('-')) || word == QLatin1String("-")) {
            takeSource(options, word);
        } else if (word == QLatin1String("--")) {
            onlySources = true;
        } else if (word.startsWith(QLatin1String("--"))) {
            takeLong(options, word, rest);
        } else {
            takeLetters(options, word, rest);
        }
    }
    if (options.part && !options.part->isPossible()) {
        setWrong(options, consoleText("Con_emptyPart"));
    }
    if (options.mode == ConsoleOptions::Mode::Convert && options.sources.isEmpty()) {
        setWrong(options, consoleText("Con_noSource"));
    }
    return options;
}

QString consoleUsage()
{
    QString usage = consoleText("Con_usage");
    for (int format = 0; format < outputFormatCount; ++format) {
        usage += formatText(QStringLiteral("  %d  %@\n"), {format, formatCaption(format)});
    }
    return usage;
}

} // namespace tavrix
