#include "app/leftover.h"

#include "app/alerttext.h"
#include "app/analysismachine.h"
#include "app/face.h"
#include "app/session.h"
#include "base/format.h"
#include "base/shownname.h"

namespace tavrix
{

QStringList leftOverToGoOnWith(Session& session, AnalysisMachine& analysis)
{
    const QStringList sources = analysis.leftOver();
    if (sources.isEmpty() || !session.face().offersLeftOver()) {
        return {};
    }
    constexpr int forget = 1;
    const QString text = formatText(alertText("D_leftOver_2"), {qint64(sources.size()), shownText(sources.first())});
    const Answer answer = session.ask({alertText("D_leftOver_1"),
                                       text,
                                       {alertText("D_leftOver_goOn"), alertText("D_leftOver_forget")},
                                       forget,
                                       0,
                                       {}});
    if (answer.after == After::Ending) {
        return {};
    }
    analysis.dropLeftOver();
    return answer.button == forget ? QStringList() : sources;
}

} // namespace tavrix
