// SPDX-License-Identifier: GPL-3.0-or-later
// Where a run is in the description of its files.
#pragma once

#include <set>
#include <string>

namespace tavrix::front
{

class Description
{
public:
    enum class Section { None, Input, Mapping, Output };

    // Takes the next line of the run.
    void follow(const std::string& line);

    [[nodiscard]] Section section() const { return section_; }
    // Whether the container is one whose stream identifiers classic lines show.
    [[nodiscard]] bool showsIdentifiers() const { return showsIdentifiers_; }
    // Whether of none of the inputs' streams it is known how it is coded; so too without streams.
    [[nodiscard]] bool lacksAllParameters() const;
    // The line as older versions indent it: version 7 sets what belongs to a stream in by two more blanks.
    [[nodiscard]] std::string outdented(const std::string& line) const;

private:
    void followSection(const std::string& line);

    Section section_ = Section::None;
    bool showsIdentifiers_ = false;
    bool indentedFurther_ = false;
    std::set<int> streams_;
    std::set<int> withoutParameters_;
};

} // namespace tavrix::front
