// SPDX-License-Identifier: GPL-3.0-or-later
// A child process that misbehaves on request. Its arguments are actions, carried out in order; each takes the words
// that its name stands with in the table at the end. It knows no Qt, so that it starts fast and does only what it is
// told.
#include <algorithm>
#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dirent.h>
#include <fcntl.h>
#include <string>
#include <string_view>
#include <sys/resource.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace
{

using Words = std::vector<std::string>;

void writeAll(int fd, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = write(fd, text.data(), text.size());
        if (written < 0 && errno != EINTR) {
            _exit(90);
        }
        if (written > 0) {
            text.remove_prefix(static_cast<size_t>(written));
        }
    }
}

void writeFile(const std::string& path, const std::string& text)
{
    // The name appears with its content in it: whoever waits for the file reads all of it.
    const std::string unfinished = path + ".part";
    const int fd = open(unfinished.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0) {
        _exit(91);
    }
    writeAll(fd, text);
    close(fd);
    if (rename(unfinished.c_str(), path.c_str()) != 0) {
        _exit(91);
    }
}

// Two hexadecimal digits a byte: "41ff" is "A" and an invalid byte.
std::string bytesOf(const std::string& hex)
{
    std::string bytes;
    for (size_t at = 0; at + 1 < hex.size(); at += 2) {
        bytes += static_cast<char>(std::stoi(hex.substr(at, 2), nullptr, 16));
    }
    return bytes;
}

[[noreturn]] void liveOn()
{
    for (;;) {
        pause();
    }
}

void crash()
{
    const rlimit none = {0, 0};
    setrlimit(RLIMIT_CORE, &none);
    // A sanitizer's handler would turn the crash into a report and an ordinary exit.
    signal(SIGSEGV, SIG_DFL);
    raise(SIGSEGV);
}

void flood(size_t count)
{
    const std::string block(4096, 'x');
    while (count > 0) {
        const size_t size = std::min(count, block.size());
        writeAll(STDOUT_FILENO, std::string_view(block).substr(0, size));
        writeAll(STDERR_FILENO, std::string_view(block).substr(0, size));
        count -= size;
    }
}

void copyInput()
{
    char buffer[65536];
    for (;;) {
        const ssize_t got = read(STDIN_FILENO, buffer, sizeof buffer);
        if (got <= 0) {
            return;
        }
        writeAll(STDOUT_FILENO, std::string_view(buffer, static_cast<size_t>(got)));
    }
}

// Lines as an encoder prints them, `spacing` milliseconds apart; 0 lines: until it is killed.
void progress(int lines, int spacing)
{
    for (int line = 1; lines == 0 || line <= lines; ++line) {
        char text[64];
        std::snprintf(text, sizeof text, "frame=%d time=%d.00 bitrate= 1.0kbits/s\n", line * 25, line);
        writeAll(STDERR_FILENO, text);
        std::this_thread::sleep_for(std::chrono::milliseconds(spacing));
    }
}

// Ends when somebody has opened the other side and closed it again.
void waitForFifo(const std::string& path)
{
    const int fd = open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (fd < 0) {
        _exit(92);
    }
    char byte = 0;
    while (read(fd, &byte, 1) > 0) {
    }
    close(fd);
}

void startBackground(const std::string& pidPath, bool floods)
{
    const pid_t pid = fork();
    if (pid != 0) {
        writeFile(pidPath, std::to_string(pid));
        return;
    }
    if (floods) {
        signal(SIGPIPE, SIG_DFL);
        for (;;) {
            flood(4096);
        }
    }
    liveOn();
}

void printArguments(const Words& words)
{
    std::string text;
    for (const std::string& word : words) {
        text += word + '\n';
    }
    writeAll(STDOUT_FILENO, text);
}

void printDescriptors()
{
    std::string text;
    DIR* folder = opendir("/proc/self/fd");
    if (folder == nullptr) {
        _exit(93);
    }
    while (const dirent* entry = readdir(folder)) {
        if (entry->d_name[0] != '.' && std::atoi(entry->d_name) != dirfd(folder)) {
            text += std::string(entry->d_name) + ' ';
        }
    }
    closedir(folder);
    writeAll(STDOUT_FILENO, text);
}

// Signals that were ignored or blocked at the start.
void printSignals()
{
    std::string text;
    for (const int number : {SIGPIPE, SIGCHLD, SIGTERM, SIGINT, SIGUSR1}) {
        struct sigaction action = {};
        sigaction(number, nullptr, &action);
        if (action.sa_handler == SIG_IGN) {
            text += "ignored " + std::to_string(number) + ' ';
        }
    }
    sigset_t blocked;
    sigprocmask(SIG_BLOCK, nullptr, &blocked);
    for (int number = 1; number < 32; ++number) {
        if (sigismember(&blocked, number) == 1) {
            text += "blocked " + std::to_string(number) + ' ';
        }
    }
    writeAll(STDOUT_FILENO, text.empty() ? "default" : text);
}

void printFolder()
{
    char buffer[4096];
    writeAll(STDOUT_FILENO, getcwd(buffer, sizeof buffer) != nullptr ? buffer : "none");
}

void printVariable(const std::string& name)
{
    const char* value = std::getenv(name.c_str());
    writeAll(STDOUT_FILENO, value != nullptr ? value : "(unset)");
}

struct Action {
    const char* name;
    int words; // -1: all that follow
    void (*run)(const Words& words);
};

const Action actions[] = {
    {"exit", 1,
     [](const Words& words) {
         _exit(std::stoi(words[0]));
     }},
    {"crash", 0,
     [](const Words&) {
         crash();
     }},
    {"signal", 1,
     [](const Words& words) {
         raise(std::stoi(words[0]));
     }},
    {"stop", 0,
     [](const Words&) {
         raise(SIGSTOP);
     }},
    {"silence", 0,
     [](const Words&) {
         liveOn();
     }},
    {"out", 1,
     [](const Words& words) {
         writeAll(STDOUT_FILENO, words[0]);
     }},
    {"err", 1,
     [](const Words& words) {
         writeAll(STDERR_FILENO, words[0]);
     }},
    {"outline", 1,
     [](const Words& words) {
         writeAll(STDOUT_FILENO, words[0] + '\n');
     }},
    {"bytes", 1,
     [](const Words& words) {
         writeAll(STDOUT_FILENO, bytesOf(words[0]));
     }},
    {"flood", 1,
     [](const Words& words) {
         flood(std::stoul(words[0]));
     }},
    {"cat", 0,
     [](const Words&) {
         copyInput();
     }},
    {"argv", -1,
     [](const Words& words) {
         printArguments(words);
     }},
    {"progress", 2,
     [](const Words& words) {
         progress(std::stoi(words[0]), std::stoi(words[1]));
     }},
    {"closeout", 0,
     [](const Words&) {
         close(STDOUT_FILENO);
         close(STDERR_FILENO);
     }},
    {"wait", 1,
     [](const Words& words) {
         waitForFifo(words[0]);
     }},
    {"touch", 1,
     [](const Words& words) {
         writeFile(words[0], "done");
     }},
    {"pid", 1,
     [](const Words& words) {
         writeFile(words[0], std::to_string(getpid()));
     }},
    {"holder", 1,
     [](const Words& words) {
         startBackground(words[0], false);
     }},
    {"flooder", 1,
     [](const Words& words) {
         startBackground(words[0], true);
     }},
    {"fds", 0,
     [](const Words&) {
         printDescriptors();
     }},
    {"signals", 0,
     [](const Words&) {
         printSignals();
     }},
    {"cwd", 0,
     [](const Words&) {
         printFolder();
     }},
    {"env", 1,
     [](const Words& words) {
         printVariable(words[0]);
     }},
};

} // namespace

int main(int argc, char** argv)
{
    const Words arguments(argv + 1, argv + argc);
    for (size_t at = 0; at < arguments.size();) {
        const auto* action = std::find_if(std::begin(actions), std::end(actions),
                                          [&](const Action& candidate) { return arguments[at] == candidate.name; });
        if (action == std::end(actions)) {
            std::fprintf(stderr, "fakechild: unknown action %s\n", arguments[at].c_str());
            return 99;
        }
        const size_t left = arguments.size() - at - 1;
        const size_t count = action->words < 0 ? left : static_cast<size_t>(action->words);
        if (count > left) {
            std::fprintf(stderr, "fakechild: %s needs more words\n", action->name);
            return 98;
        }
        const auto first = arguments.begin() + static_cast<Words::difference_type>(at) + 1;
        action->run(Words(first, first + static_cast<Words::difference_type>(count)));
        at += count + 1;
    }
    return 0;
}
