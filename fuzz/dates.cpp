// SPDX-License-Identifier: GPL-3.0-or-later
// Reads any bytes as a clip of any kind and asks for its dates; a date that is found must be on the calendar.
#include "media/clipdates.h"

#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace tavrix;
    const ByteView bytes(data, size);
    const ClipDates dates = clipDates(readAtOf(bytes), size);
    const std::optional<WrittenDate> text =
        writtenDate(std::string_view(reinterpret_cast<const char*>(data), size < 64 ? size : 64));
    for (const std::optional<WrittenDate>& date : {dates.creationDate, dates.aviDate, text}) {
        if (date && !isOnCalendar(date->clock)) {
            std::abort();
        }
    }
    const SystemTime now{1800000000, 3600};
    const std::optional<RecordingDate> date = recordingDate(dates, SystemTime{1700000000, 3600}, now);
    if (date && (date->seconds < 631152000 || date->seconds > now.seconds + now.ahead)) {
        std::abort();
    }
    return 0;
}
