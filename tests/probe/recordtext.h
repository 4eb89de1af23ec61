// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "base/text/format.h"
#include "probe/mediainforecord.h"

#include <string>
#include <vector>

namespace tavrix::test
{

// Lines "key=i 1", "key=f 29.97", "key=s text" of a record, sorted by key, so that the types are compared too.
inline std::vector<std::string> recordText(const MediaInfoRecord& record)
{
    std::vector<std::string> lines;
    for (auto it = record.begin(); it != record.end(); ++it) {
        const int type = it.value().typeId();
        const char* mark = type == QMetaType::Int       ? "i "
                           : type == QMetaType::Float   ? "f "
                           : type == QMetaType::QString ? "s "
                                                        : "? ";
        lines.push_back(it.key().toStdString() + "=" + mark + textOf(it.value()).toStdString());
    }
    return lines;
}

} // namespace tavrix::test
