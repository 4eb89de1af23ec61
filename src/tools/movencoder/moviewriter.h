#pragma once

#include "tools/movencoder/avsupport.h"
#include "tools/movencoder/encodepipeline.h"
#include "tools/movencoder/moviereader.h"
#include "tools/movencoder/pictureencoder.h"

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

// The output: a QuickTime movie written to an open file.
namespace tavrix::movencoder
{

class MovieWriter
{
public:
    // Starts a movie in `fd` (open for reading and writing, not closed here) with a video stream as the encoder
    // describes it and the source's sound streams. Dates, time code, languages, names and rotation come from the
    // source. Null, with the reason in `error`, on failure.
    [[nodiscard]] static std::unique_ptr<MovieWriter> open(int fd, const MovieReader& source, Format format,
                                                           const PictureEncoder& encoder, const PictureFacts& facts,
                                                           std::string& error);
    MovieWriter(const MovieWriter&) = delete;
    MovieWriter& operator=(const MovieWriter&) = delete;
    ~MovieWriter();

    // The time and duration are in the time base of the source's video stream.
    [[nodiscard]] bool writePicture(const CodedPicture& picture, std::string& error);
    // Takes the packet's content.
    [[nodiscard]] bool writeSound(AVPacket& packet, std::string& error);
    // Completes the movie; without it the file is of no use.
    [[nodiscard]] bool finish(std::string& error);

private:
    MovieWriter(int fd, const MovieReader& source) : fd_(fd), source_(source) {}
    [[nodiscard]] bool openContainer(std::string& error);
    [[nodiscard]] bool addVideo(Format format, const PictureEncoder& encoder, const PictureFacts& facts,
                                std::string& error);
    void copyTimecode(AVStream& stream) const;
    void copyRotation(AVStream& stream, const Fit& fit) const;
    [[nodiscard]] bool addSound(const AVStream& from, std::string& error);
    [[nodiscard]] bool writeHeader(std::string& error);
    [[nodiscard]] bool write(AVPacket& packet, const AVStream& from, std::string& error);
    [[nodiscard]] bool failed(int result, std::string& error) const;
    static int writeBytes(void* self, std::uint8_t* bytes, int count);
    static std::int64_t seekTo(void* self, std::int64_t offset, int whence);

    int fd_;
    int writeError_ = 0; // first error number of the file
    const MovieReader& source_;
    AVFormatContext* container_ = nullptr;
    PacketPtr packet_;
    std::vector<int> targetOf_; // source stream index to output stream index, -1: not copied
};

} // namespace tavrix::movencoder
