#include "app/batchrows.h"

#include "app/alerttext.h"
#include "app/currentrow.h"
#include "app/session.h"
#include "app/windowmodel.h"
#include "base/filedelete.h"
#include "base/log.h"
#include "base/settings.h"

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
    WindowModel& model = session_.model();
    BatchList& rows = model.encBatchArrayController;
    int index = rows.selectedRow();
    if (index < 0) {
        if (sender != nullptr || rows.count() == 0) {
            return;
        }
        index = 0;
    }
    if (sender != nullptr && index == currentRowIndex(rows)) {
        session_.sheet(alertText("D_batch_1"));
        return;
    }
    removeThumbnail(index);
    rows.removeRow(index);
    if (rows.count() == 0) {
        model.batchEncGoBt.setEnabled(false);
        if (model.drawer.isOpen()) {
            model.drawer.close();
        }
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
