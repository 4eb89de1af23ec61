#include "console/options.h"

#include "app/windowmodel.h"
#include "base/format.h"
#include "console/consoletext.h"

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
    } else if (value == QLatin1String("ask")) {
        options.existing = ExistingPolicy::Ask;
    } else {
        setWrong(options, formatText(consoleText("Con_badExisting"), {value}));
    }
}

void takeValue(ConsoleOptions& options, const QString& name, const QString& value)
{
    if (name == QLatin1String("--format")) {
        takeFormat(options, value);
    } else if (name == QLatin1String("--existing")) {
        takeExisting(options, value);
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
           name == QLatin1String("--existing");
}

void takeFlagWord(ConsoleOptions& options, const QString& word)
{
    if (word == QLatin1String("--json")) {
        options.json = true;
    } else if (word == QLatin1String("--system")) {
        options.mode = ConsoleOptions::Mode::System;
    } else if (word == QLatin1String("--help") || word == QLatin1String("-h")) {
        options.mode = ConsoleOptions::Mode::Help;
    } else if (word == QLatin1String("--version")) {
        options.mode = ConsoleOptions::Mode::Version;
    } else {
        setWrong(options, formatText(consoleText("Con_unknownOption"), {word}));
    }
}

} // namespace

ConsoleOptions parseConsoleOptions(const QStringList& words)
{
    ConsoleOptions options;
    bool onlySources = false;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& word = words.at(i);
        if (onlySources || !word.startsWith(QLatin1Char('-')) || word == QLatin1String("-")) {
            takeSource(options, word);
            continue;
        }
        if (word == QLatin1String("--")) {
            onlySources = true;
            continue;
        }
        const qsizetype equals = word.indexOf(QLatin1Char('='));
        const QString name = equals < 0 ? word : word.left(equals);
        if (!takesValue(name)) {
            takeFlagWord(options, word);
        } else if (equals >= 0) {
            takeValue(options, name, word.mid(equals + 1));
        } else if (i + 1 < words.size()) {
            takeValue(options, name, words.at(++i));
        } else {
            setWrong(options, formatText(consoleText("Con_missingValue"), {name}));
        }
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
