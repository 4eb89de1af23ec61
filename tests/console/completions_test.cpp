// SPDX-License-Identifier: GPL-3.0-or-later
#include "support/qtprinters.h"
#include "testpaths.h"

#include <QDir>
#include <QFile>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QStandardPaths>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace tavrix;
using namespace tavrix::test;

namespace
{

const QString completions = QStringLiteral(TAVRIX_SOURCE_DIR "/packaging/completions/");

// Lines that the shell prints in a folder with the file "clip.mts" and the folder "out"; nothing when it fails.
QStringList linesOf(const QString& shell, const QStringList& arguments)
{
    const QTemporaryDir place;
    QFile clip(place.filePath(text("clip.mts")));
    if (!clip.open(QIODevice::WriteOnly) || !QDir(place.path()).mkdir(text("out"))) {
        return {};
    }
    QProcess process;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(text("HOME"), place.path());
    process.setProcessEnvironment(environment);
    process.setWorkingDirectory(place.path());
    process.setStandardInputFile(QProcess::nullDevice());
    process.start(shell, arguments);
    if (!process.waitForFinished(60000) || process.exitStatus() != QProcess::NormalExit || process.exitCode() != 0) {
        ADD_FAILURE() << process.readAllStandardError().toStdString();
        return {};
    }
    return QString::fromUtf8(process.readAllStandardOutput()).split(u'\n', Qt::SkipEmptyParts);
}

struct CompletionCase {
    const char* name;
    QStringList words; // behind the program's name; the last one is being typed
    QStringList expected;
};

class BatchCompletion : public testing::TestWithParam<CompletionCase>
{
};

TEST_P(BatchCompletion, OfBashOffersWhatFits)
{
    // compopt works only inside a completion of the shell itself.
    const QString script = QStringLiteral("compopt() { :; }; . \"$1\"; shift; COMP_WORDS=(tavrix-batch \"$@\"); "
                                          "COMP_CWORD=$#; _tavrix_batch; printf '%s\\n' \"${COMPREPLY[@]}\"");
    QStringList offered = linesOf(text("/bin/bash"),
                                  QStringList{text("-c"), script, text("bash"), completions + text("tavrix-batch.bash")}
                                      << GetParam().words);
    offered.sort();
    EXPECT_TEXTS(offered, GetParam().expected);
}

TEST_P(BatchCompletion, OfFishOffersWhatFits)
{
    if (QStandardPaths::findExecutable(text("fish")).isEmpty()) {
        GTEST_SKIP() << "fish is not installed";
    }
    if (GetParam().words.contains(text("="))) {
        GTEST_SKIP() << "only bash takes a word apart at the equals sign";
    }
    const QString script = QStringLiteral("source %1; complete -C 'tavrix-batch %2'")
                               .arg(completions + text("tavrix-batch.fish"), GetParam().words.join(u' '));
    QStringList offered;
    for (const QString& line : linesOf(text("fish"), {text("-c"), script})) {
        offered << line.section(u'\t', 0, 0).remove(QRegularExpression(text("/$")));
    }
    // Where both a long and a short form fit, fish offers both.
    for (const QString& word : GetParam().expected) {
        EXPECT_TRUE(offered.contains(word)) << word.toStdString() << " of " << offered.join(u' ').toStdString();
    }
}

const CompletionCase completionCases[] = {
    {"format", {text("--format"), text("")}, {text("0"), text("1"), text("2"), text("3"), text("4"), text("5")}},
    {"formatByLetter", {text("-f"), text("5")}, {text("5")}},
    {"existing", {text("--existing"), text("s")}, {text("skip")}},
    {"existingBehindASign", {text("--existing"), text("="), text("k")}, {text("keep")}},
    {"onlyFoldersAsDestination", {text("-o"), text("")}, {text("out")}},
    {"options", {text("--d")}, {text("--dry-run")}},
    {"twoOptions", {text("--ve")}, {text("--verbose"), text("--version")}},
    {"sources", {text("--json"), text("cl")}, {text("clip.mts")}},
};

INSTANTIATE_TEST_SUITE_P(Words, BatchCompletion, testing::ValuesIn(completionCases), rowName<CompletionCase>);

// What zsh would say to a mistake in the file it says when it reads it.
TEST(BatchCompletionOfZsh, IsReadWithoutAMistake)
{
    if (QStandardPaths::findExecutable(text("zsh")).isEmpty()) {
        GTEST_SKIP() << "zsh is not installed";
    }
    for (const char* program : {"_tavrix-batch", "_tavrix-inspect"}) {
        const QString script = text("_arguments() { print -l -- \"$@\" }; . \"$1\"");
        const QStringList given =
            linesOf(text("zsh"), {text("-f"), text("-c"), script, text("zsh"), completions + QLatin1String(program)});
        EXPECT_TRUE(given.contains(text("--json[one JSON object a line instead of text]")) ||
                    given.contains(text("--json[one JSON object a line for each file]")))
            << given.join(u'\n').toStdString();
    }
}

} // namespace
