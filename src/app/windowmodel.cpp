// SPDX-License-Identifier: GPL-3.0-or-later
#include "app/windowmodel.h"

#include "base/dialogue/localisation.h"
#include "base/text/format.h"

namespace tavrix
{

namespace
{

QStringList colorImageNames()
{
    QStringList names;
    for (int i = 0; i < colorThemeCount; ++i) {
        names << QStringLiteral("color%1").arg(i);
    }
    return names;
}

} // namespace

QString formatCaption(int out)
{
    return localizedString(formatText(QStringLiteral("prefCaption%d"), {out}));
}

BatchControls::BatchControls()
{
    const auto follow = [this] {
        const BatchList& rows = encBatchArrayController;
        const bool any = rows.selectedRow() >= 0 && rows.selectedRow() < rows.count();
        // Of the first row, where none is selected.
        previewBt.setEnabled(rows.count() > 0);
        batchEncRemoveBt.setEnabled(any);
        batchEncRemoveAllBt.setEnabled(rows.count() > 0);
    };
    BatchList* rows = &encBatchArrayController;
    QObject::connect(rows, &BatchList::selectionChanged, rows, follow);
    QObject::connect(rows, &QAbstractItemModel::rowsInserted, rows, follow);
    QObject::connect(rows, &QAbstractItemModel::rowsRemoved, rows, follow);
    QObject::connect(rows, &QAbstractItemModel::modelReset, rows, follow);
    follow();
}

PreferenceControls::PreferenceControls() : prefColor("prefColor", colorImageNames()) {}

void PreferenceControls::showFormatCaption()
{
    prefCheckCaption.setStringValue(formatCaption(prefCheckMatrix.selectedSegment()));
}

void PreferenceControls::showColorImage()
{
    prefColorImgView.setImageName(prefColor.imageName(prefColor.selectedSegment()));
}

WindowModel::WindowModel(QObject* parent) : QObject(parent)
{
    setObjectName(QStringLiteral("window"));
}

} // namespace tavrix
