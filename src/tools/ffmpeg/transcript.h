// What ffmpeg prints, in the words of the old build.
#pragma once

#include "tools/ffmpeg/errorlines.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace tavrix::front
{

// A file as the installed ffmpeg names it, and as the caller does.
struct FileName {
    std::string url;   // "file:/proc/self/fd/5"
    std::string shown; // "/home/me/clip.mp4"
};

struct TranscriptNames {
    std::vector<FileName> inputs;
    std::vector<FileName> outputs;
};

struct TranscriptLine {
    std::string text;
    char end = '\n';

    bool operator==(const TranscriptLine&) const = default;
};

// What the lines seen so far mean for the run.
struct Findings {
    std::string version;          // of the installed ffmpeg
    std::string refusedOption;    // an option it does not know
    bool annexBRefused = false;   // the stream is not H.264
    bool inputDescribed = false;  // an input was opened
    bool outputDescribed = false; // an output was opened
    std::string writeFailure;     // the line that tells of a damaged output
    std::string readFailure;      // the input that could not be read to its end, and why
    bool nothingEncoded = false;
    bool undecodable = false; // not one picture came out of the decoder
    int decodeErrors = 0;     // lines that tell of frames refused or damaged
};

// Translates line by line, without waiting for more: only the stream mapping is held back until the output has been
// described, where it used to stand.
class Transcript
{
public:
    // `levelsMarked`: lines carry "[info] " and the like, and those of the library's debug level are left out.
    Transcript(TranscriptNames names, bool levelsMarked);

    // The lines to print for one line of ffmpeg.
    [[nodiscard]] std::vector<TranscriptLine> translate(std::string_view line, char end);
    // The lines to print after the last one, when ffmpeg has ended with `status`.
    [[nodiscard]] std::vector<TranscriptLine> finish(int status);

    [[nodiscard]] const Findings& findings() const { return findings_; }

private:
    enum class Section { None, Input, Mapping, Output };

    [[nodiscard]] bool stripLevel(std::string& line) const;
    [[nodiscard]] std::string withShownNames(std::string line) const;
    [[nodiscard]] std::string withoutNames(std::string line) const;
    void note(const std::string& line, const std::string& shown);
    void trackSection(const std::string& line);
    [[nodiscard]] std::optional<OpenFailure> namedFailure(const std::string& line) const;
    [[nodiscard]] bool translateFailure(const std::string& line, std::string& classic);
    [[nodiscard]] std::string translateOther(const std::string& line);
    [[nodiscard]] std::string nameFailure(const std::string& line) const;
    void keepRemark(const std::string& line);
    void releaseMapping(std::vector<TranscriptLine>& lines);

    TranscriptNames names_;
    bool levelsMarked_;
    Findings findings_;
    Section section_ = Section::None;
    bool showsIdentifiers_ = false;
    std::vector<std::string> mapping_;
    std::set<int> describedStreams_;
    std::set<int> withoutParameters_;
    bool failureTold_ = false;
    bool foreignFormat_ = false; // the input is in a format that is not handled
    bool framesCounted_ = false;
    double knownTime_ = 0;
    std::string remark_;
};

} // namespace tavrix::front
