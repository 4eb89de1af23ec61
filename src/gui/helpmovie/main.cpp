// SPDX-License-Identifier: GPL-3.0-or-later
#include "base/bundle/bundle.h"
#include "base/dialogue/localisation.h"
#include "gui/dialogs/helpslides.h"

#include <QDir>
#include <QGuiApplication>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>

#include <cstdio>

// Draws the help's slides in one language as pictures, for the build to join into the help movie.
namespace
{

constexpr QSize slideSize(1280, 720);

bool drawSlide(int number, const QString& path)
{
    QSvgRenderer renderer(tavrix::helpSlide(number));
    if (!renderer.isValid()) {
        return false;
    }
    QImage image(slideSize, QImage::Format_RGB32);
    image.fill(Qt::black);
    QPainter painter(&image);
    renderer.render(&painter);
    painter.end();
    return image.save(path);
}

} // namespace

int main(int argc, char** argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    if (argc != 4) {
        std::fputs("Usage: tavrix_helpmovie RESOURCES LANGUAGE FOLDER\n", stderr);
        return 2;
    }
    tavrix::setResourcePath(QString::fromLocal8Bit(argv[1]));
    tavrix::setLanguage(QString::fromLocal8Bit(argv[2]));
    const QDir folder(QString::fromLocal8Bit(argv[3]));
    if (!folder.mkpath(QStringLiteral("."))) {
        std::fprintf(stderr, "%s cannot be made\n", argv[3]);
        return 1;
    }
    const int count = tavrix::helpSlideCount();
    for (int i = 1; i <= count; ++i) {
        if (!drawSlide(i, folder.filePath(QStringLiteral("slide%1.png").arg(i)))) {
            std::fprintf(stderr, "slide %d cannot be drawn\n", i);
            return 1;
        }
    }
    return count > 0 ? 0 : 1;
}
