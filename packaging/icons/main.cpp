// SPDX-License-Identifier: GPL-3.0-or-later
// Draws the program's icon in the sizes of the icon theme: tavrix_icons SVG FOLDER SIZE... makes FOLDER/SIZE.png.
#include <QCoreApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    const QStringList words = QCoreApplication::arguments();
    QSvgRenderer drawing(words.value(1));
    if (!drawing.isValid()) {
        std::fprintf(stderr, "tavrix_icons: %s is no drawing\n", qPrintable(words.value(1)));
        return 1;
    }
    for (const QString& size : words.mid(3)) {
        QImage picture(size.toInt(), size.toInt(), QImage::Format_ARGB32);
        picture.fill(Qt::transparent);
        QPainter painter(&picture);
        painter.setRenderHint(QPainter::Antialiasing);
        drawing.render(&painter);
        painter.end();
        const QString file = words.value(2) + QLatin1Char('/') + size + QStringLiteral(".png");
        if (!picture.save(file)) {
            std::fprintf(stderr, "tavrix_icons: %s cannot be written\n", qPrintable(file));
            return 1;
        }
    }
    return 0;
}
