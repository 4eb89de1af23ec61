// SPDX-License-Identifier: GPL-3.0-or-later
#include "gui/widgets/styledtext.h"

#include "base/text/text.h"
#include "gui/widgets/images.h"

#include <QComboBox>

namespace tavrix
{

namespace
{

QColor colorNamed(const QString& name)
{
    const QString lower = name.toLower();
    if (lower == QLatin1String("red")) {
        return {255, 0, 0};
    }
    if (lower == QLatin1String("white")) {
        return {255, 255, 255};
    }
    if (lower == QLatin1String("gray")) {
        return {128, 128, 128};
    }
    return {0, 0, 0};
}

} // namespace

StyledText colorizedStr(const QString& text, const QString& colorName)
{
    StyledText styled;
    styled.text = text;
    styled.format.setForeground(colorNamed(colorName));
    return styled;
}

StyledText monospaceFontColorStr(const QString& text, const QStringList& specification)
{
    const QString family = specification.value(0, QStringLiteral("Lucida Grande"));
    const int size = leadingInteger(specification.value(1, QStringLiteral("13")));
    StyledText styled = colorizedStr(text.isNull() ? QStringLiteral("") : text, specification.value(2));
    styled.format.setFontFamilies({family});
    if (size > 0) {
        styled.format.setFontPointSize(size);
    }
    return styled;
}

void menuImage(const QString& imageName, QComboBox* popUpButton)
{
    const int selected = popUpButton->currentIndex();
    if (selected >= 0) {
        popUpButton->setItemText(selected, QString());
        popUpButton->setItemIcon(selected, imageNamed(imageName));
    }
}

} // namespace tavrix
