// Writes small movies into the folder given, as a start for the fuzzer.
#include "support/moviebuilder.h"

#include <fstream>
#include <iostream>

namespace
{

using namespace tavrix::test;

bool write(const std::string& folder, const std::string& name, const BuiltMovie& movie)
{
    const Bytes bytes = builtFile(movie);
    std::ofstream file(folder + "/" + name, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    return file.good();
}

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

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: fuzz_seeds FOLDER\n";
        return 2;
    }
    const std::string folder = argv[1];
    BuiltMovie movie = pictureAndSound();
    bool written = write(folder, "plain.mov", movie);
    movie.longSizes = true;
    movie.tracks.front().longEdits = true;
    movie.tracks.front().headerVersion = 1;
    written = write(folder, "long.mov", movie) && written;
    movie = pictureAndSound();
    movie.movieFirst = true;
    movie.tracks.front().edits.clear();
    written = write(folder, "first.mov", movie) && written;
    if (!written) {
        std::cerr << "fuzz_seeds: " << folder << " cannot be written\n";
    }
    return written ? 0 : 1;
}
