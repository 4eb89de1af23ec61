// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A hidden folder beside a file that is being made.

#include "sys/result.h"

#include <QString>

namespace tavrix
{

// Made with a name of its own, and removed with what lies in it when the object goes or when SIGINT, SIGTERM or SIGHUP
// ends the program. One at a time; from then on the calling thread and those that it starts have these signals blocked.
class WorkingFolder
{
public:
    explicit WorkingFolder(const QString& parent);
    ~WorkingFolder();
    WorkingFolder(const WorkingFolder&) = delete;
    WorkingFolder& operator=(const WorkingFolder&) = delete;

    [[nodiscard]] bool isOpen() const { return !folder_.isNull(); }
    [[nodiscard]] QString path(const QString& name) const;
    // Gives the finished file its final name, where nothing may stand unless it is to be replaced.
    [[nodiscard]] Result<void, QString> publish(const QString& file, const QString& destination,
                                                bool replaces = false) const;

private:
    QString folder_;
};

} // namespace tavrix
