// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QString>
#include <QStringList>
#include <QTextCharFormat>
#include <QTextLayout>

class QComboBox;

// Texts with colour and font for the log and status areas, and images on pop-up menus.
namespace tavrix
{

// A text with one format; its lines are cut at their end with an ellipsis when they do not fit.
struct StyledText {
    QString text;
    QTextCharFormat format;
    QTextOption::WrapMode wrapMode = QTextOption::NoWrap;
    Qt::TextElideMode elideMode = Qt::ElideRight;
};

// Colours are "red", "white", "gray" and "black" in either case; any other name, or nothing, is black. Opaque.
[[nodiscard]] StyledText colorizedStr(const QString& text, const QString& colorName);
// The specification is [font name, size, colour name]; missing items are "Lucida Grande", 13 and black.
[[nodiscard]] StyledText monospaceFontColorStr(const QString& text, const QStringList& specification);

// The selected item of the pop-up button loses its title and shows the image of the resources instead.
void menuImage(const QString& imageName, QComboBox* popUpButton);

} // namespace tavrix
