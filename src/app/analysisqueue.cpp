// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/analysisqueue.h"

#include "app/stepflags.h"
#include "base/store/preferences.h"
#include "base/text/text.h"

#include <algorithm>

namespace tavrix
{

namespace
{

constexpr qsizetype longQueue = 256;
// The most keys that one move closes up: more cannot follow one another in a queue of this program.
constexpr int mostMoved = 12344;

QVariantMap storedQueue()
{
    return prefReadDico(pref::analysisSrcPathesDico).value_or(QVariantMap());
}

// Key of the next source: "0", or the smallest number when the queue begins later. `hint` is where it last began.
QString nextKey(const QVariantMap& queue, int hint)
{
    for (const QString& key : {QStringLiteral("0"), QString::number(hint)}) {
        if (queue.contains(key)) {
            return key;
        }
    }
    QString smallest;
    for (auto it = queue.keyBegin(); it != queue.keyEnd(); ++it) {
        if (smallest.isNull() || leadingInteger(*it) < leadingInteger(smallest)) {
            smallest = *it;
        }
    }
    return smallest;
}

// Takes one source out and moves those that follow it to the keys from "0" on.
void closeUp(QVariantMap& queue, const QString& takenKey)
{
    const int taken = leadingInteger(takenKey);
    queue.remove(takenKey);
    for (int i = 1; i <= mostMoved; ++i) {
        const auto next = queue.find(QString::number(taken + i));
        if (next == queue.end()) {
            break;
        }
        const QVariant source = next.value();
        queue.erase(next);
        queue.insert(QString::number(i - 1), source);
    }
}

} // namespace

void AnalysisQueue::fill(const QStringList& sources)
{
    QVariantMap queue;
    for (qsizetype i = 0; i < sources.size(); ++i) {
        queue.insert(QString::number(i), sources.at(i));
    }
    // One store of the whole queue: the keys are those that one write per source would leave.
    prefWriteDico(pref::analysisSrcPathesDico, queue);
    head_ = 0;
    takes_ = 0;
}

QString AnalysisQueue::first() const
{
    const QVariantMap queue = storedQueue();
    return queue.isEmpty() ? QString() : queue.value(nextKey(queue, head_)).toString();
}

QStringList AnalysisQueue::next(int most) const
{
    const QVariantMap queue = storedQueue();
    QStringList sources;
    const int begin = queue.isEmpty() ? 0 : leadingInteger(nextKey(queue, head_));
    for (int i = begin; sources.size() < most; ++i) {
        const auto found = queue.constFind(QString::number(i));
        if (found == queue.constEnd()) {
            break;
        }
        sources << found.value().toString();
    }
    return sources;
}

void AnalysisQueue::removeFirst()
{
    QVariantMap queue = storedQueue();
    if (queue.isEmpty()) {
        return;
    }
    const QString key = nextKey(queue, head_);
    // Moving all that waits costs time in proportion to the queue: a long one is moved up only now and then.
    if (queue.size() <= longQueue || takes_++ % longQueue == 0) {
        prefDelete(pref::analysisSrcPathesDico);
        closeUp(queue, key);
        prefWriteDico(pref::analysisSrcPathesDico, queue);
        head_ = 0;
    } else {
        queue.clear(); // a second owner would make the store copy the whole queue
        prefDeleteChildDico(pref::analysisSrcPathesDico, key);
        head_ = leadingInteger(key) + 1;
    }
}

QStringList AnalysisQueue::sources() const
{
    const QVariantMap queue = storedQueue();
    QStringList keys = queue.keys();
    std::sort(keys.begin(), keys.end(),
              [](const QString& a, const QString& b) { return leadingInteger(a) < leadingInteger(b); });
    QStringList sources;
    for (const QString& key : keys) {
        sources << queue.value(key).toString();
    }
    return sources;
}

int AnalysisQueue::count() const
{
    return static_cast<int>(storedQueue().size());
}

void AnalysisQueue::clear()
{
    prefDelete(pref::analysisSrcPathesDico);
}

} // namespace tavrix
