// SPDX-License-Identifier: GPL-3.0-or-later
// Writes small movies, streams, playlists and AVIs into the folder given, one folder for each target.
#include "support/moviebuilder.h"
#include "support/playlistbuilder.h"
#include "support_media/builtdates.h"
#include "support_media/cameramessage.h"

#include <filesystem>
#include <fstream>
#include <iostream>

namespace
{

using namespace tavrix;
using namespace tavrix::test;

class Folder
{
public:
    explicit Folder(std::filesystem::path path) : path_(std::move(path)) {}

    void write(const std::string& target, const std::string& name, const Bytes& bytes)
    {
        std::filesystem::create_directories(path_ / target);
        std::ofstream file(path_ / target / name, std::ios::binary);
        file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
        written_ = file.good() && written_;
    }
    [[nodiscard]] bool written() const { return written_; }

private:
    std::filesystem::path path_;
    bool written_ = true;
};

BuiltMovie pictureAndSound()
{
    BuiltMovie movie;
    movie.tracks.emplace_back();
    movie.tracks.front().apertures = {{"clef", {1024, 576}}, {"enof", {720, 576}}};
    movie.tracks.front().extensions = pixelAspect(64, 45);
    movie.tracks.front().edits = {{600, -1}, {3000, 300}, {600, 0}};
    BuiltTrack sound;
    sound.id = 2;
    sound.mediaType = "soun";
    sound.format = "sowt";
    sound.soundFields = soundFields(0, 2, 16, 44100);
    sound.mediaScale = 44100;
    sound.samples = 400;
    sound.sampleDuration = 1;
    sound.sampleSize = 4;
    movie.tracks.push_back(sound);
    movie.nsav = 1;
    return movie;
}

void writeMovies(Folder& folder)
{
    BuiltMovie movie = pictureAndSound();
    folder.write("atoms", "plain.mov", builtFile(movie));
    folder.write("dates", "plain.mov", builtFile(movie));
    movie.longSizes = true;
    movie.tracks.front().longEdits = true;
    movie.tracks.front().headerVersion = 1;
    folder.write("atoms", "long.mov", builtFile(movie));
    movie = pictureAndSound();
    movie.movieFirst = true;
    movie.tracks.front().edits.clear();
    folder.write("atoms", "first.mov", builtFile(movie));
    const Bytes texts = built::joined({built::quickTimeText("\251day", "2012-01-02T15:04:05+0100"),
                                       built::mobileText("auth", "somebody"), built::mobileText("titl", "a day")});
    folder.write(
        "dates", "texts.mov",
        atomBytes("moov", built::joined({atomBytes("udta", texts), built::keysAtom({{"com.apple.quicktime.creationdate",
                                                                                     "2012-01-02T15:04:05+0100"}})})));
}

void writeStreams(Folder& folder)
{
    const ClockTime clock{2010, 5, 1, 12, 34, 56};
    for (const std::size_t length : {std::size_t{188}, std::size_t{192}}) {
        const Bytes stream = built::cameraStream(clock, length);
        const Bytes head(stream.begin(),
                         stream.begin() + static_cast<std::ptrdiff_t>(std::min(stream.size(), 20 * length)));
        folder.write("dates", "stream" + std::to_string(length), head);
        folder.write("scans", "stream" + std::to_string(length), head);
    }
    const Bytes date = built::chunk("IDIT", built::bytesOf("Mon Jan 02 15:04:05 2012\n"));
    const Bytes avi = built::aviFile(
        {built::list("hdrl", {date}), built::list("INFO", {built::chunk("ICRD", built::bytesOf("2012-01-02"))}),
         built::list("movi", {built::chunk("00dc", Bytes(64, 7))}), built::chunk("idx1", Bytes(16, 0))});
    folder.write("dates", "date.avi", avi);
    folder.write("scans", "date.avi", avi);
}

void writePlaylists(Folder& folder)
{
    std::vector<PlaylistClip> clips(3);
    clips[0].name = "00000";
    clips[1].name = "00001";
    clips[1].marked = false;
    clips[1].flags = 6;
    clips[2].name = "00017";
    folder.write("playlists", "unset", PlaylistBuilder(zoneUnset).build(clips));
    folder.write("playlists", "tokyo", PlaylistBuilder(zoneTokyo).build({clips[2]}));
    folder.write("playlists", "empty", PlaylistBuilder(zoneNewYork).build({}));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: fuzz_seeds FOLDER\n";
        return 2;
    }
    Folder folder(argv[1]);
    writeMovies(folder);
    writeStreams(folder);
    writePlaylists(folder);
    if (!folder.written()) {
        std::cerr << "fuzz_seeds: " << argv[1] << " cannot be written\n";
    }
    return folder.written() ? 0 : 1;
}
