// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// The folder that a person chooses for the outputs.

#include <QString>

namespace tavrix
{

class Control;
class Session;

class Destination
{
public:
    explicit Destination(Session& session) : session_(session) {}

    // What stands in the destination field: a folder as typed, "" when none is.
    [[nodiscard]] QString typed() const;
    // Lets a person choose the folder of the field that the button belongs to.
    void choose(const Control* sender);
    // Opens the folder of the field that the button belongs to, the one of the outputs where it exists.
    void reveal(const Control* sender);
    // Makes sure before a batch that the field names a folder, and asks for one when it does not. False: no batch.
    [[nodiscard]] bool settle();

private:
    enum class Asked { Chosen, Cancelled, WorkOver };

    [[nodiscard]] Asked askForFolder(const char* titleKey);
    // For a full path of a folder that does not exist yet.
    [[nodiscard]] Asked offerToMake();
    [[nodiscard]] Asked chosen();
    // Puts the folder of the preferences into the field; false when it does not exist.
    bool takePreferred();

    Session& session_;
};

} // namespace tavrix
