// SPDX-License-Identifier: GPL-3.0-or-later
// The recording date that AVCHD cameras write into the H.264 pictures themselves. Free of Qt.
#pragma once

#include "media/atomreader.h"
#include "media/writtendate.h"

#include <optional>

namespace tavrix
{

// The camera's clock, from the bytes behind the head of one supplemental message ("user data, unregistered"): an
// identifier of 16 bytes, "MDPM", a count and that many tags of five bytes. No value for other users' data and for a
// clock that was never set.
[[nodiscard]] std::optional<ClockTime> userDataDate(ByteView message);
// From one NAL unit without its start code or length; no value for other kinds of units.
[[nodiscard]] std::optional<ClockTime> nalUnitDate(ByteView unit);
// The first date among units that start codes separate, as transport streams and AVI hold them.
[[nodiscard]] std::optional<ClockTime> startCodeStreamDate(ByteView stream);
// The first date among units behind their lengths of 1, 2 or 4 bytes, as a sample of MOV and MP4 holds them. A sample
// that is cut off is read as far as it goes.
[[nodiscard]] std::optional<ClockTime> sampleDate(ByteView sample, int lengthSize);

// The first date in the first bytes of a transport stream with packets of 188 bytes, or of 192 as cameras write them.
[[nodiscard]] std::optional<ClockTime> transportStreamDate(ByteView stream);
// True when the bytes are packets of a transport stream from their start on.
[[nodiscard]] bool isTransportStream(ByteView stream);

} // namespace tavrix
