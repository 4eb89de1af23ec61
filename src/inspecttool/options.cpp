// SPDX-License-Identifier: GPL-3.0-or-later
#include "inspecttool/options.h"

#include "inspect/words.h"

#include <QHash>

namespace tavrix
{

namespace
{

using Mode = InspectOptions::Mode;

// The first mistake is told.
void setWrong(InspectOptions& options, const QString& error)
{
    if (options.mode != Mode::Wrong) {
        options.mode = Mode::Wrong;
        options.error = error;
    }
}

void setMode(InspectOptions& options, Mode mode)
{
    if (options.mode != Mode::Wrong) {
        options.mode = mode;
    }
}

bool takesValue(const QString& name)
{
    static const QStringList names{QStringLiteral("--export"), QStringLiteral("--output"), QStringLiteral("-o"),
                                   QStringLiteral("--from"),   QStringLiteral("--to"),     QStringLiteral("--size")};
    return names.contains(name);
}

void takeForm(InspectOptions& options, const QString& value)
{
    static const QHash<QString, PartForm> forms{{QStringLiteral("wav"), PartForm::Wave},
                                                {QStringLiteral("mov"), PartForm::Movie},
                                                {QStringLiteral("mov-fast"), PartForm::MovieHeaderFirst}};
    const auto form = forms.constFind(value);
    if (form == forms.constEnd()) {
        setWrong(options, inspectText("Ins_badExport", {value}));
        return;
    }
    options.form = *form;
    setMode(options, Mode::Export);
}

void takeTime(InspectOptions& options, const QString& name, const QString& value)
{
    if (!takePartTime(options.part, name, value)) {
        setWrong(options, inspectText("Ins_badTime", {name, value}));
    }
}

// "640x360".
void takeSize(InspectOptions& options, const QString& value)
{
    constexpr int largest = 8192;
    const QStringList sides = value.split(QLatin1Char('x'));
    const QSize size(sides.value(0).toInt(), sides.value(1).toInt());
    if (sides.size() != 2 || size.isEmpty() || size.width() > largest || size.height() > largest) {
        setWrong(options, inspectText("Ins_badSize", {value}));
        return;
    }
    options.size = size;
}

void takeValue(InspectOptions& options, const QString& name, const QString& value)
{
    if (value.isEmpty()) {
        setWrong(options, inspectText("Ins_missingValue", {name}));
    } else if (name == QLatin1String("--export")) {
        takeForm(options, value);
    } else if (name == QLatin1String("--from") || name == QLatin1String("--to")) {
        takeTime(options, name, value);
    } else if (name == QLatin1String("--size")) {
        takeSize(options, value);
    } else {
        options.output = value;
    }
}

void takeFlag(InspectOptions& options, const QString& word)
{
    if (word == QLatin1String("--json")) {
        options.json = true;
    } else if (word == QLatin1String("--thorough")) {
        options.thorough = true;
    } else if (word == QLatin1String("--system")) {
        setMode(options, Mode::System);
    } else if (word == QLatin1String("--full-paths")) {
        options.fullPaths = true;
    } else if (word == QLatin1String("--replace")) {
        options.replaces = true;
    } else if (word == QLatin1String("--progress")) {
        options.forPrograms = true;
    } else if (word == QLatin1String("--help") || word == QLatin1String("-h")) {
        setMode(options, Mode::Help);
    } else if (word == QLatin1String("--version")) {
        setMode(options, Mode::Version);
    } else {
        setWrong(options, inspectText("Ins_unknownOption", {word}));
    }
}

void takeFile(InspectOptions& options, const QString& word)
{
    // An empty word, as an unset shell variable leaves it, would stand for the current folder.
    if (word.isEmpty()) {
        setWrong(options, inspectText("Ins_noFile"));
    } else {
        options.files << word;
    }
}

void checkExport(InspectOptions& options)
{
    const bool asksMore = options.part || !options.size.isEmpty() || options.replaces || options.forPrograms;
    if (options.mode != Mode::Export) {
        if (asksMore) {
            setWrong(options, inspectText("Ins_partAlone"));
        }
    } else if (options.part && !options.part->isPossible()) {
        setWrong(options, inspectText("Ins_partEmpty"));
    } else if (!options.size.isEmpty() && options.form == PartForm::Wave) {
        setWrong(options, inspectText("Ins_sizeOfSound"));
    }
}

void checkWhole(InspectOptions& options)
{
    if (options.fullPaths && (options.mode == Mode::Describe || options.mode == Mode::Export)) {
        setWrong(options, inspectText("Ins_pathsAlone"));
    }
    if (options.mode == Mode::System && !options.files.isEmpty()) {
        setWrong(options, inspectText("Ins_systemAlone"));
    }
    if (options.mode != Mode::Describe && options.mode != Mode::Export) {
        return;
    }
    checkExport(options);
    if (options.files.isEmpty()) {
        setWrong(options, inspectText("Ins_noFile"));
    } else if (options.mode == Mode::Export && options.files.size() > 1) {
        setWrong(options, inspectText("Ins_exportOne"));
    } else if (options.mode == Mode::Describe && !options.output.isNull()) {
        setWrong(options, inspectText("Ins_outputAlone"));
    }
}

} // namespace

InspectOptions parseInspectOptions(const QStringList& words)
{
    InspectOptions options;
    bool onlyFiles = false;
    for (qsizetype i = 0; i < words.size(); ++i) {
        const QString& word = words.at(i);
        if (onlyFiles || !word.startsWith(QLatin1Char('-'))) {
            takeFile(options, word);
            continue;
        }
        if (word == QLatin1String("--")) {
            onlyFiles = true;
            continue;
        }
        const qsizetype equals = word.startsWith(QLatin1String("--")) ? word.indexOf(QLatin1Char('=')) : -1;
        const QString name = equals < 0 ? word : word.left(equals);
        if (!takesValue(name)) {
            takeFlag(options, word);
        } else if (equals >= 0) {
            takeValue(options, name, word.mid(equals + 1));
        } else {
            takeValue(options, name, words.value(++i));
        }
    }
    checkWhole(options);
    return options;
}

} // namespace tavrix
