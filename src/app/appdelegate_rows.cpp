#include "app/appdelegate.h"

#include "app/stepflags.h"
#include "base/alerts.h"
#include "base/filedelete.h"
#include "base/localisation.h"
#include "base/log.h"
#include "base/preferences.h"
#include "base/settings.h"

// Removing rows of the batch list.
namespace tavrix
{

namespace
{

constexpr int removeAllAlertSeconds = 60;

} // namespace

void appDelegate::removeThumbnail(int row)
{
    const QString image = model_.encBatchArrayController.row(row).dico.value(record::imgPathStr).toString();
    if (!image.isEmpty() && !removeOwnFile(image, getTMPFOLDER())) {
        logLine(QStringLiteral("thumbnail           :-( %@"), {image});
    }
}

void appDelegate::encBatchRemove(Control* sender)
{
    BatchList& rows = model_.encBatchArrayController;
    int index = rows.selectedRow();
    if (index < 0) {
        if (sender != nullptr || rows.count() == 0) {
            return;
        }
        index = 0;
    }
    if (sender != nullptr && index == encBatchInprogressRowIdentification()) {
        displayAlertSheet(localizedString(QStringLiteral("D_batch_1")), QString(), face_->window());
        return;
    }
    removeThumbnail(index);
    rows.removeRow(index);
    if (rows.count() == 0) {
        model_.batchEncGoBt.setEnabled(false);
        if (model_.drawer.isOpen()) {
            model_.drawer.close();
        }
    }
}

void appDelegate::encBatchRemoveAll(Control* sender)
{
    BatchList& rows = model_.encBatchArrayController;
    if (rows.count() == 0) {
        return;
    }
    if (sender != nullptr) {
        const QString cancel = localizedString(QStringLiteral("D_Annuler"));
        const QString answer = displayAlertDelayed(
            localizedString(QStringLiteral("D_batch_4")), localizedString(QStringLiteral("D_batch_5")), cancel,
            localizedString(QStringLiteral("D_oui")), QString(), 0, removeAllAlertSeconds);
        if (answer == cancel) {
            return;
        }
    }
    const int current = encBatchInprogressRowIdentification();
    for (int i = 0; i < rows.count(); ++i) {
        if (i != current) {
            removeThumbnail(i);
        }
    }
    if (current >= 0) {
        rows.keepOnly(current);
        return;
    }
    model_.batchEncGoBt.setEnabled(false);
    model_.drawer.close();
    rows.clear();
}

} // namespace tavrix
