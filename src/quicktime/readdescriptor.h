#pragma once

#include "base/paths.h"

#include <QString>

#include <fcntl.h>
#include <unistd.h>

namespace tavrix
{

// A file opened for reading, without waiting for what is not a regular file; -1 when it cannot be opened.
class ReadDescriptor
{
public:
    explicit ReadDescriptor(const QString& path)
        : number_(::open(nativePath(path).constData(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY))
    {
    }
    ReadDescriptor(const ReadDescriptor&) = delete;
    ReadDescriptor& operator=(const ReadDescriptor&) = delete;
    ~ReadDescriptor()
    {
        if (number_ >= 0) {
            ::close(number_);
        }
    }
    [[nodiscard]] int number() const { return number_; }

private:
    int number_;
};

} // namespace tavrix
