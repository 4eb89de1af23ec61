#include "app/windowmodel.h"

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

WindowModel::WindowModel(QObject* parent) : QObject(parent), prefColor("prefColor", colorImageNames())
{
    setObjectName(QStringLiteral("window"));
}

} // namespace tavrix
