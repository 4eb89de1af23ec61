// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "sys/result.h"
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
    // source.
    [[nodiscard]] static Result<std::unique_ptr<MovieWriter>>
    open(int fd, const MovieReader& source, const PictureEncoder& encoder, const PictureFacts& facts);
    MovieWriter(const MovieWriter&) = delete;
    MovieWriter& operator=(const MovieWriter&) = delete;
    ~MovieWriter();

    // The time and duration are in the time base of the facts.
    Result<void> writePicture(const CodedPicture& picture);
    // Takes the packet's content.
    Result<void> writeSound(AVPacket& packet);
    // Completes the movie; without it the file is of no use.
    Result<void> finish();

private:
    MovieWriter(int fd, const MovieReader& source) : fd_(fd), source_(source) {}
    Result<void> openContainer();
    Result<void> addVideo(const PictureEncoder& encoder, const PictureFacts& facts);
    void copyTimecode(AVStream& stream) const;
    Result<void> copyRotation(AVStream& stream, const Fit& fit) const;
    Result<void> addSound(const AVStream& from);
    Result<void> writeHeader();
    Result<void> write(AVPacket& packet, int stream, AVRational base);
    [[nodiscard]] Result<void> resultOf(int result) const;
    static int writeBytes(void* self, WrittenBytes bytes, int count);
    static std::int64_t seekTo(void* self, std::int64_t offset, int whence);

    int fd_;
    int writeError_ = 0; // first error number of the file
    const MovieReader& source_;
    AVFormatContext* container_ = nullptr;
    PacketPtr packet_;
    AVRational videoBase_{1, 1}; // of the pictures' times
    int videoIndex_ = 0;
    std::vector<int> targetOf_; // source stream index to output stream index, -1: not copied
};

} // namespace tavrix::movencoder
