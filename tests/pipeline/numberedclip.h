// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <vector>

// Clips whose pictures bear their number, and whose sound tells when it begins: so that what comes out can be compared
// with what went in picture by picture.
namespace tavrix::test
{

struct NumberedClip {
    int width = 320;
    int height = 180;
    QString rate = QStringLiteral("25"); // "60000/1001"
    int pictures = 75;
    QStringList pictureFilter; // of the encode that makes the clip ("-vf", "...")
    int channels = 2;
    // Where sound is heard, in seconds; the rest is silent.
    double soundFrom = 1;
    double soundTo = 1.5;
    double soundLength = 0;    // seconds; 0: as long as the pictures
    double amplitude = 0.25;   // of each channel that sounds
    std::vector<int> sounding; // channels that sound; empty: all
    QStringList codecs;        // options of the output
};

// False when the clip could not be made.
bool makeNumberedClip(const QString& path, const NumberedClip& clip);

// The part of a picture that holds the source's picture, in shares of its width and height.
struct PictureArea {
    double left = 0;
    double top = 0;
    double right = 1;
    double bottom = 1;
};

struct ShownPicture {
    double time = 0; // seconds
    int number = -1; // -1: not readable, or not upright
};

// The pictures that a player shows of a file, in order.
[[nodiscard]] std::vector<ShownPicture> shownPictures(const QString& path, const PictureArea& area = {});
// The mean brightness (0 to 255) of a part of the first picture; -1 when there is none.
[[nodiscard]] double brightness(const QString& path, const PictureArea& area);

struct ShownSound {
    double start = 0; // seconds
    int rate = 0;
    std::vector<std::vector<float>> channels;

    [[nodiscard]] double duration() const;
    // When a channel is first louder than 0.05, in seconds; -1 when it never is.
    [[nodiscard]] double onset(std::size_t channel = 0) const;
    // The largest value, and the mean loudness (root of the mean square) between two times, of a channel.
    [[nodiscard]] double peak(std::size_t channel) const;
    [[nodiscard]] double level(std::size_t channel, double from, double to) const;
};

// The first sound stream of a file as a player plays it.
[[nodiscard]] ShownSound shownSound(const QString& path);

// Sets the matrix of every picture track of a movie; false when there is none.
bool turnMovie(const QString& path, int a, int b, int c, int d);

} // namespace tavrix::test
