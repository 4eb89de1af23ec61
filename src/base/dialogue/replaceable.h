// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// A service of which the program has one, and in whose place a face or a test puts another.

#include <memory>

namespace tavrix
{

template <typename Service> class Replaceable
{
public:
    // `makeOwn` makes the program's own service when it is first needed.
    explicit Replaceable(std::unique_ptr<Service> (*makeOwn)()) : makeOwn_(makeOwn) {}

    // Not owned; null returns to the program's own.
    void replace(Service* other) { other_ = other; }

    [[nodiscard]] Service& inUse()
    {
        if (other_ == nullptr && own_ == nullptr) {
            own_ = makeOwn_();
        }
        return other_ != nullptr ? *other_ : *own_;
    }

private:
    std::unique_ptr<Service> (*makeOwn_)();
    std::unique_ptr<Service> own_;
    Service* other_ = nullptr;
};

} // namespace tavrix
