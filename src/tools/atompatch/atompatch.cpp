// SPDX-License-Identifier: GPL-3.0-or-later
#include "tools/atompatch/atompatch.h"

#include "media/movieatoms.h"
#include "sys/descriptor.h"
#include "sys/errortext.h"

#include <array>
#include <cerrno>
#include <ostream>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace tavrix
{

namespace
{

constexpr const char* usage = "usage: atompatch -i FILE -f nsav -o self\n"
                              "       atompatch --help\n"
                              "\n"
                              "Clears the \"nsav\" mark of a QuickTime movie, which forbids to save it.\n"
                              "The four bytes of its value are set to 0 in the file itself; nothing moves.\n"
                              "A file that is no movie, or a damaged one, is left untouched.\n"
                              "\n"
                              "  -i FILE   the movie\n"
                              "  -f nsav   the atom to clear\n"
                              "  -o self   change the file itself\n"
                              "\n"
                              "exit status: 0 cleared or nothing to clear, 1 refused, 2 wrong usage\n";

struct Options {
    std::string input;
    std::string atom;
    std::string output;
    bool help = false;
    std::string error; // "" when the arguments are good
};

Options optionsFrom(const std::vector<std::string>& arguments)
{
    Options options;
    for (std::size_t index = 0; index < arguments.size(); ++index) {
        const std::string& name = arguments[index];
        if (name == "--help" || name == "-h") {
            options.help = true;
            return options;
        }
        std::string* value =
            name == "-i" ? &options.input : (name == "-f" ? &options.atom : (name == "-o" ? &options.output : nullptr));
        if (value == nullptr || index + 1 >= arguments.size()) {
            options.error = (value == nullptr ? "unknown argument: " : "value missing after ") + name;
            return options;
        }
        *value = arguments[++index];
    }
    if (options.input.empty()) {
        options.error = "no file given (-i)";
    } else if (options.atom != "nsav") {
        options.error = "only the atom nsav can be cleared (-f nsav)";
    } else if (options.output != "self") {
        options.error = "the file can only be changed in place (-o self)";
    }
    return options;
}

// "" when the movie may be patched, else why not.
std::string reasonToRefuse(const MovieAtoms& movie)
{
    if (!movie.found) {
        return movie.damaged ? "damaged, or not a QuickTime movie" : "not a QuickTime movie";
    }
    if (movie.compressed) {
        return "its header is compressed";
    }
    if (movie.damaged) {
        return "the movie is damaged";
    }
    return {};
}

bool writeZeros(int descriptor, std::uint64_t offset)
{
    const std::array<std::uint8_t, 4> zeros{};
    ssize_t written = 0;
    do {
        written = ::pwrite(descriptor, zeros.data(), zeros.size(), static_cast<off_t>(offset));
    } while (written < 0 && errno == EINTR);
    return written == static_cast<ssize_t>(zeros.size());
}

AtomPatchResult refused(std::ostream& errors, const std::string& path, const std::string& reason)
{
    errors << "atompatch: " << path << ": " << reason << '\n';
    return AtomPatchResult::Refused;
}

AtomPatchResult patchFile(const std::string& path, std::ostream& out, std::ostream& errors)
{
    const Descriptor file = openFile(path.c_str(), O_RDWR);
    struct stat status {
    };
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        return refused(errors, path, errorText(errno));
    }
    if (!S_ISREG(status.st_mode)) {
        return refused(errors, path, "not a regular file");
    }
    const MovieAtoms movie = readMovieAtoms(readAtOf(file.get()), static_cast<std::uint64_t>(status.st_size));
    const std::string reason = reasonToRefuse(movie);
    if (!reason.empty()) {
        return refused(errors, path, reason);
    }
    if (movie.nsav.value_or(0) == 0) {
        out << "nothing to clear\n";
        return AtomPatchResult::Done;
    }
    for (const std::uint64_t offset : movie.nsavValueOffsets) {
        if (!writeZeros(file.get(), offset)) {
            return refused(errors, path, "cannot be written: " + errorText(errno));
        }
    }
    if (::fsync(file.get()) != 0) {
        return refused(errors, path, "cannot be written: " + errorText(errno));
    }
    out << "nsav cleared\n";
    return AtomPatchResult::Done;
}

} // namespace

AtomPatchResult runAtomPatch(const std::vector<std::string>& arguments, std::ostream& out, std::ostream& errors)
{
    const Options options = optionsFrom(arguments);
    if (options.help) {
        out << usage;
        return AtomPatchResult::Done;
    }
    if (!options.error.empty()) {
        errors << "atompatch: " << options.error << '\n' << usage;
        return AtomPatchResult::Usage;
    }
    return patchFile(options.input, out, errors);
}

} // namespace tavrix
