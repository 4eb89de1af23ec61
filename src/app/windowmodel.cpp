#include "app/windowmodel.h"

#include "base/format.h"
#include "base/localisation.h"

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

PreferenceControls::PreferenceControls() : prefColor("prefColor", colorImageNames()) {}

void PreferenceControls::showFormatCaption()
{
    const QString key = formatText(QStringLiteral("prefCaption%d"), {prefCheckMatrix.selectedSegment()});
    prefCheckCaption.setStringValue(localizedString(key));
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
