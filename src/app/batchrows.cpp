// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/batchrows.h"

#include "app/alerttext.h"
#include "app/currentrow.h"
#include "app/session.h"
#include "app/windowmodel.h"
#include "base/files/filedelete.h"
#include "base/store/settings.h"
#include "base/text/log.h"

#include <algorithm>
#include <functional>

namespace tavrix
{

namespace
{

constexpr int removeAllAlertSeconds = 60;
constexpr int cancelButton = 0;

} // namespace

void BatchRows::removeThumbnail(int row)
{
    const QString image = session_.model().encBatchArrayController.row(row).dico.value(record::imgPathStr).toString();
    if (!image.isEmpty() && !removeOwnFile(image, getTMPFOLDER())) {
        logLine(QStringLiteral("thumbnail           :-( %@"), {image});
    }
}

void BatchRows::remove(const Control* sender)
{
    BatchList& rows = session_.model().encBatchArrayController;
    QList<int> chosen = rows.selectedRows();
    if (chosen.isEmpty()) {
        if (sender != nullptr || rows.count() == 0) {
            return;
        }
        chosen << 0;
    }
    std::sort(chosen.begin(), chosen.end(), std::greater<>());
    const bool spared = sender != nullptr && chosen.removeAll(currentRowIndex(rows)) > 0;
    removeRows(chosen);
    if (spared) {
        session_.sheet(alertText("D_batch_1"));
    } else if (chosen.size() > 1) {
        // Another Delete goes on where this one was.
        rows.setSelectedRow(qMin(chosen.last(), rows.count() - 1));
    }
}

// Neighbours go together: a view follows each removal.
void BatchRows::removeRows(const QList<int>& descending)
{
    WindowModel& model = session_.model();
    BatchList& rows = model.encBatchArrayController;
    for (qsizetype i = 0; i < descending.size();) {
        const int last = descending.at(i);
        int first = last;
        removeThumbnail(last);
        for (++i; i < descending.size() && descending.at(i) == first - 1; ++i) {
            --first;
            removeThumbnail(first);
        }
        rows.removeRange(first, last);
    }
    if (rows.count() == 0) {
        model.batchEncGoBt.setEnabled(false);
        if (model.drawer.isOpen()) {
            model.drawer.close();
        }
    }
}

void BatchRows::removeRow(int row)
{
    if (row >= 0 && row < session_.model().encBatchArrayController.count()) {
        removeRows({row});
    }
}

void BatchRows::removeConverted()
{
    const BatchList& rows = session_.model().encBatchArrayController;
    QList<int> converted;
    for (int row = rows.count() - 1; row >= 0; --row) {
        if (rows.row(row).isConverted()) {
            converted << row;
        }
    }
    if (!converted.isEmpty()) {
        removeRows(converted);
    }
}

void BatchRows::removeAll(const Control* sender)
{
    WindowModel& model = session_.model();
    BatchList& rows = model.encBatchArrayController;
    if (rows.count() == 0) {
        return;
    }
    if (sender != nullptr) {
        const Answer answer = session_.ask({alertText("D_batch_4"),
                                            alertText("D_batch_5"),
                                            {alertText("D_Annuler"), alertText("D_oui")},
                                            cancelButton,
                                            removeAllAlertSeconds,
                                            {}});
        // A batch that was stopped meanwhile leaves its rows: the answer is about them all the same.
        if (answer.after == After::Ending || answer.button == cancelButton) {
            return;
        }
    }
    const int current = currentRowIndex(rows);
    for (int i = 0; i < rows.count(); ++i) {
        if (i != current) {
            removeThumbnail(i);
        }
    }
    if (current >= 0) {
        rows.keepOnly(current);
        return;
    }
    model.batchEncGoBt.setEnabled(false);
    model.drawer.close();
    rows.clear();
}

} // namespace tavrix
