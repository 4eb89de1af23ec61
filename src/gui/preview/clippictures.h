// SPDX-License-Identifier: GPL-3.0-or-later
// Single pictures of the clip that the preview shows: the exact one of a time, and small ones for the time line.
#pragma once

#include <QImage>
#include <QObject>
#include <QSize>
#include <QString>

#include <memory>

namespace tavrix
{

// Decodes in a thread of its own, so that neither a slow disk nor a long group of pictures holds up the window. Of
// wishes that come faster than pictures only the newest is fulfilled.
class ClipPictures : public QObject
{
    Q_OBJECT
public:
    explicit ClipPictures(QObject* parent = nullptr);
    ~ClipPictures() override;

    // "" unloads. What was wished of the clip before does not come any more.
    void setClip(const QString& path);
    // The picture shown at that time, in seconds of the clip's timeline; it comes by picture().
    void wish(double seconds);
    // So many of them in that size at most, at even distances; they come by thumbnail().
    void wishThumbnails(int count, double duration, const QSize& size);

Q_SIGNALS:
    // Shown from `start` to `end`; the answer to the wish for that time.
    void picture(const QImage& image, double start, double end, double wished);
    void thumbnail(int number, const QImage& image);
    // Nothing can be decoded.
    void failed();

private:
    struct Work;
    std::shared_ptr<Work> work_;
};

} // namespace tavrix
