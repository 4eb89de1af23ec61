// SPDX-License-Identifier: GPL-3.0-or-later
#include "randomworld.h"

#include "base/store/preferences.h"

#include <QDir>
#include <QFile>

namespace tavrix::test
{

RandomWorld::RandomWorld()
{
    for (int i = 0; i < sourceCount; ++i) {
        sources << folder.path(QStringLiteral("sources/clip%1.mts").arg(i));
    }
    folder.makeFolder(QStringLiteral("destination"));
    fresh = folder.makeFile(QStringLiteral("fresh.mts"), "clip");
}

void RandomWorld::renew() const
{
    QDir outputs(events());
    const QStringList files = outputs.entryList(QDir::Files | QDir::Hidden);
    for (const QString& file : files) {
        outputs.remove(file);
    }
    folder.makeFolder(QStringLiteral("temporary"));
    bringBack(sourceCount);
}

void RandomWorld::bringBack(int count) const
{
    for (const QString& source : sources.first(count)) {
        if (!QFile::exists(source)) {
            folder.makeFile(source.mid(folder.path().size() + 1), "clip");
        }
    }
}

int randomBelow(std::mt19937& random, int limit)
{
    return static_cast<int>(random() % static_cast<unsigned>(limit));
}

FakeClip anyClip(std::mt19937& random)
{
    const auto below = [&random](int limit) {
        return randomBelow(random, limit);
    };
    FakeClip clip;
    const int kind = below(10);
    clip.height = kind == 0 ? 1080 : 720;
    clip.letter = kind == 1 ? QStringLiteral("t") : kind == 2 ? QString() : QStringLiteral("p");
    if (kind == 3) {
        clip.text = QStringLiteral("x: Unknown format\n");
    } else if (kind == 4) {
        clip.text = QStringLiteral(" ");
    }
    clip.kilobytes = below(4) == 0 ? below(3) * 100 - 1 : 300;
    clip.duration = below(6) == 0 ? QStringLiteral("N/A") : QStringLiteral("00:00:30.00");
    clip.image = below(5) != 0;
    return clip;
}

QStringList strayKeys()
{
    QStringList keys = prefAllKeys();
    keys.removeAll(pref::imgPathStr);
    keys.removeAll(pref::encCurrentProcessingFile);
    return keys;
}

} // namespace tavrix::test
