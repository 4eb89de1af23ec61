// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Process-wide settings. Main thread only; plain values without locks.

#include <QString>

namespace tavrix
{

// Temporary folder of this run, ending with "/". Unset: "/private/tmp/<bundle name>", without a trailing "/".
[[nodiscard]] QString getTMPFOLDER();
// Nothing returns to the unset form.
void setTMPFOLDER(const QString& folder);

// Verbose diagnostics, 0 or 1; off at start.
[[nodiscard]] unsigned char getDEBUG();
void setDEBUG(unsigned char on);
// Developer diagnostics: extra alerts, start-up checks skipped. Off in a user build.
[[nodiscard]] unsigned char getDEBUGDEV();
// For tests only: a user build never calls it.
void setDEBUGDEVForTests(unsigned char on);

// 1 when an encoder of that kind is available, found at start-up.
[[nodiscard]] int getWMV();
void setWMV(int available);
[[nodiscard]] int getDIVX();
void setDIVX(int available);
[[nodiscard]] int getAIC();
void setAIC(int available);
[[nodiscard]] int getPRORES();
void setPRORES(int available);
[[nodiscard]] int getMPEG2();
void setMPEG2(int available);

// Intake gate: 1 = open, 0 = closed while an analysis runs.
[[nodiscard]] unsigned char getOPENPERM();
void setOPENPERM(unsigned char open);

} // namespace tavrix
