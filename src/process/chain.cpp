// SPDX-License-Identifier: GPL-3.0-or-later
#include "process/chain.h"

#include "base/text/log.h"
#include "process/programlookup.h"

namespace tavrix
{

namespace
{

constexpr int codeNoCommand = 2;
constexpr int codeNoProgram = 3;

struct Links {
    Pipe toNext; // or the last one's output
    Pipe error;
};

void startOne(ChildSetup setup, const ChainCommand& command, const Links& links, const Descriptor& input, bool last,
              Chain& chain)
{
    setup.program = command.program;
    setup.arguments = command.arguments;
    if (input.isOpen()) {
        setup.input = input.get();
    }
    setup.output = links.toNext.writeEnd.get();
    if (last) {
        setup.error = links.error.writeEnd.get();
    }
    Result<ChildProcess, QString> child = ChildProcess::start(setup);
    if (!child) {
        logLine(QStringLiteral("task not started    :-( %@ : %@"), {command.program, child.reason()});
        return;
    }
    chain.processes.push_back(std::move(*child));
    chain.lastExists = last;
}

} // namespace

int parsedChain(const QStringList& list, QList<ChainCommand>& commands)
{
    QList<QStringList> pieces(1);
    for (const QString& element : list) {
        if (element != QLatin1String("|")) {
            pieces.last().append(launchArgument(element));
            continue;
        }
        if (pieces.last().isEmpty()) {
            return codeNoCommand;
        }
        pieces.append(QStringList());
    }
    commands.clear();
    for (const QStringList& piece : pieces) {
        const QString program = piece.isEmpty() ? QString() : resolvedProgram(piece.first());
        if (program.isNull()) {
            return codeNoProgram;
        }
        commands.append({program, piece.mid(1)});
    }
    return 0;
}

Chain startChain(const QList<ChainCommand>& commands, const QList<std::pair<QString, QString>>& environment)
{
    ChildSetup setup;
    setup.environment = environment;
    Chain chain;
    Descriptor input;
    for (qsizetype index = 0; index < commands.size(); ++index) {
        const bool last = index + 1 == commands.size();
        Links links;
        links.toNext = makePipe(last ? PipeReader::Parent : PipeReader::Child);
        if (last) {
            links.error = makePipe(PipeReader::Parent);
        }
        if (!links.toNext.isOpen() || (last && !links.error.isOpen())) {
            logLine(QStringLiteral("task not started    :-( no pipe for %@"), {commands[index].program});
            return chain;
        }
        startOne(setup, commands[index], links, input, last, chain);
        Descriptor& reader = last ? chain.output : input;
        reader = std::move(links.toNext.readEnd);
        chain.error = std::move(links.error.readEnd);
    }
    return chain;
}

} // namespace tavrix
