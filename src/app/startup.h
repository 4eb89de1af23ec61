// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The start of the program.

#include <memory>

namespace tavrix
{

class DropArea;
class InstanceLock;
class Session;

// Checks whether the program may run, clears away what an earlier run has left, and restores the user's settings. The
// locks are kept as long as this object lives.
class StartUp
{
public:
    StartUp(Session& session, DropArea& dropArea);
    ~StartUp();
    StartUp(const StartUp&) = delete;
    StartUp& operator=(const StartUp&) = delete;

    // False when a check failed: its alert has been shown and the program must end.
    [[nodiscard]] bool run();
    // Empties the display of analysis and encode.
    void clearDisplay();

private:
    [[nodiscard]] bool mayRun();
    [[nodiscard]] bool isSingleInstance();
    [[nodiscard]] bool isInstallPathUsable();
    // Shows the alert of a failed check: false.
    bool refuse(const char* titleKey, const char* textKey = nullptr);
    void killOldTools();
    void startLogs();
    [[nodiscard]] bool makeTemporaryFolder();
    void takeCodecInventory();
    void restorePreferences();
    void removeLeftOverIntermediate();

    Session& session_;
    DropArea& dropArea_;
    std::unique_ptr<InstanceLock> instanceLock_;
    std::unique_ptr<InstanceLock> temporaryLock_;
};

} // namespace tavrix
