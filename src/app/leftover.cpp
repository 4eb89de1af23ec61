// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/leftover.h"

#include "app/alerttext.h"
#include "app/analysismachine.h"
#include "app/batchmemory.h"
#include "app/face.h"
#include "app/session.h"
#include "base/dialogue/plurals.h"
#include "base/files/fileinfo.h"
#include "base/text/format.h"
#include "base/text/paths.h"
#include "base/text/shownname.h"

namespace tavrix
{

namespace
{

constexpr qsizetype mostNames = 5;

QString counted(const char* key, qsizetype number, const QString& name)
{
    return formatText(countedText(key, number, QString()), {qint64(number), name});
}

// "“a.mts”, “b.mts”", and an ellipsis where there are too many.
QString namesOf(const QStringList& paths)
{
    QStringList names;
    for (const QString& path : paths.first(qMin(mostNames, paths.size()))) {
        names << shownText(lastPathComponent(path));
    }
    return names.join(QStringLiteral(", ")) + (paths.size() > mostNames ? QStringLiteral(", …") : QString());
}

// Of one path only the first is taken: a clip can stand in the list and in the queue.
QStringList withoutRepeats(QStringList paths)
{
    paths.removeDuplicates();
    return paths;
}

} // namespace

QStringList leftOverToGoOnWith(Session& session, AnalysisMachine& analysis, BatchMemory& memory)
{
    if (!session.face().offersLeftOver()) {
        return {};
    }
    QStringList there;
    QStringList gone;
    for (const QString& source : withoutRepeats(memory.recalled() + analysis.leftOver())) {
        (testPresenceCocoa(source) ? there : gone) << source;
    }
    if (there.isEmpty() && gone.isEmpty()) {
        return {};
    }
    // A quit in the middle of the reading leaves a queue and no list.
    const bool unexpected = !memory.recalled().isEmpty();
    const QString title = alertText(unexpected ? "D_leftOver_1" : "D_leftOver_queue_1");
    constexpr int forget = 1;
    Answer answer;
    const QString missing = gone.isEmpty() ? QString() : counted("D_leftOver_gone", gone.size(), namesOf(gone));
    if (there.isEmpty()) {
        answer.after = session.tell(title, missing);
        answer.button = forget;
    } else {
        QString text = counted(unexpected ? "D_leftOver_2" : "D_leftOver_queue_2", there.size(),
                               shownText(lastPathComponent(there.first())));
        if (!gone.isEmpty()) {
            text += QStringLiteral("\n\n") + missing;
        }
        answer =
            session.ask({title, text, {alertText("D_leftOver_goOn"), alertText("D_leftOver_forget")}, forget, 0, {}});
    }
    if (answer.after == After::Ending) {
        return {};
    }
    analysis.dropLeftOver();
    if (answer.button == forget) {
        memory.dropRecalled();
        return {};
    }
    memory.bringBack();
    return there;
}

} // namespace tavrix
