// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batchmemory.h"

#include "app/face.h"
#include "app/partfile.h"
#include "app/session.h"
#include "app/stepflags.h"
#include "app/windowmodel.h"
#include "base/store/preferences.h"
#include "base/text/log.h"

#include <utility>

namespace tavrix
{

namespace
{

// A long list is written now and then, a short one whenever it has changed: a clip that has left the queue of those to
// be read stands in the list that is saved with it.
constexpr int shortList = 500;
constexpr int longListDelay = 2000; // milliseconds

const QString sourcesKey = QStringLiteral("sources");
const QString formatsKey = QStringLiteral("formats");
const QString partsKey = QStringLiteral("parts");
const QString destinationKey = QStringLiteral("destination");

} // namespace

BatchMemory::BatchMemory(Session& session) : session_(session)
{
    timer_.setSingleShot(true);
    connect(&timer_, &QTimer::timeout, this, &BatchMemory::write);
    if (!session_.face().offersLeftOver()) {
        sealed_ = true;
        return;
    }
    BatchList& rows = session_.model().encBatchArrayController;
    connect(&rows, &BatchList::rowsInserted, this,
            [this](const QModelIndex&, int first, int last) { restoreFormat(first, last); });
    connect(&rows, &BatchList::rowsInserted, this, &BatchMemory::noteChange);
    connect(&rows, &BatchList::rowsRemoved, this, &BatchMemory::noteChange);
    connect(&rows, &BatchList::rowsMoved, this, &BatchMemory::noteChange);
    connect(&rows, &BatchList::dataChanged, this, &BatchMemory::noteChange);
    connect(&rows, &BatchList::modelReset, this, &BatchMemory::noteChange);
}

void BatchMemory::recall()
{
    if (sealed_) {
        return;
    }
    const QVariantMap left = prefReadDico(pref::batchMemory).value_or(QVariantMap());
    const QVariantList formats = left.value(formatsKey).toList();
    const QVariantList parts = left.value(partsKey).toList();
    for (const QVariant& source : left.value(sourcesKey).toList()) {
        const QString path = source.toString();
        if (!path.startsWith(QLatin1Char('/')) || formats_.contains(path)) {
            continue;
        }
        formats_.insert(path, formats.value(recalled_.size()).toInt());
        parts_.insert(path, parts.value(recalled_.size()).toString());
        recalled_ << path;
    }
    destination_ = left.value(destinationKey).toString();
    if (!recalled_.isEmpty()) {
        logLine(QStringLiteral("list of last time   :-/ %d : %@"), {qint64(recalled_.size()), recalled_.first()});
    }
}

void BatchMemory::bringBack()
{
    TextField& destination = session_.model().mainEncDstPathStr;
    if (destination.stringValue().isEmpty() && !destination_.isEmpty()) {
        destination.setStringValue(destination_);
    }
    recalled_.clear();
}

void BatchMemory::dropRecalled()
{
    recalled_.clear();
    formats_.clear();
    write();
}

void BatchMemory::forget()
{
    seal();
    prefDelete(pref::batchMemory);
}

void BatchMemory::seal()
{
    if (changed_) {
        write();
    }
    sealed_ = true;
}

void BatchMemory::noteChange()
{
    if (sealed_ || changed_) {
        return;
    }
    changed_ = true;
    if (session_.model().encBatchArrayController.count() < shortList) {
        QMetaObject::invokeMethod(this, &BatchMemory::write, Qt::QueuedConnection);
    } else {
        timer_.start(longListDelay);
    }
}

// Rows are asked about one after the other: those that wait for the answer stay remembered beside them.
void BatchMemory::write()
{
    timer_.stop();
    changed_ = false;
    if (sealed_) {
        return;
    }
    const BatchList& rows = session_.model().encBatchArrayController;
    QVariantList sources;
    QVariantList formats;
    QVariantList parts;
    for (const QString& source : std::as_const(recalled_)) {
        sources << source;
        formats << formats_.value(source);
        parts << storedPart(partOfStored(parts_.value(source)));
    }
    for (int i = 0; i < rows.count(); ++i) {
        const BatchRow& row = rows.row(i);
        if (!row.isConverted() && !row.source().isEmpty() && !recalled_.contains(row.source())) {
            sources << row.source();
            formats << row.out;
            parts << storedPart(row.part);
        }
    }
    if (sources.isEmpty()) {
        prefDelete(pref::batchMemory);
        return;
    }
    prefWriteDico(pref::batchMemory, QVariantMap({{sourcesKey, sources},
                                                  {formatsKey, formats},
                                                  {partsKey, parts},
                                                  {destinationKey, session_.model().mainEncDstPathStr.stringValue()}}));
}

void BatchMemory::restoreFormat(int first, int last)
{
    BatchList& rows = session_.model().encBatchArrayController;
    for (int i = first; i <= last && !formats_.isEmpty(); ++i) {
        const auto format = formats_.constFind(rows.row(i).source());
        if (format != formats_.constEnd()) {
            const int out = *format;
            formats_.erase(format);
            if (isOutputFormat(out)) {
                rows.setOut(i, out);
            }
            rows.setPart(i, partOfStored(parts_.take(rows.row(i).source())));
        }
    }
}

} // namespace tavrix
