// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// One way to fail with a reason.

#include <optional>
#include <string>
#include <type_traits>
#include <utility>

namespace tavrix
{

// Why something failed: one line without a line end, never empty.
template <typename Reason = std::string> struct Failure {
    Reason reason;
};
template <typename Reason> Failure(Reason) -> Failure<Reason>;
Failure(const char*)->Failure<std::string>;

// A value, or the reason why there is none. Code on Qt takes QString for the reason.
//
//     Result<int> parse(std::string_view text);
//     if (const auto number = parse(text)) { use(*number); } else { print(number.reason()); }
template <typename Value, typename Reason = std::string> class [[nodiscard]] Result
{
public:
    template <typename Given> // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): it is constrained
    requires std::is_convertible_v<Given, Value> Result(Given&& value) : value_(std::forward<Given>(value)) {}
    template <typename Given>
    requires std::is_convertible_v<Given, Reason> Result(Failure<Given> failure) : reason_(std::move(failure.reason)) {}

    [[nodiscard]] bool hasValue() const { return value_.has_value(); }
    explicit operator bool() const { return hasValue(); }

    // Only where there is a value.
    [[nodiscard]] Value& operator*() & { return *value_; }
    [[nodiscard]] const Value& operator*() const& { return *value_; }
    [[nodiscard]] Value&& operator*() && { return std::move(*value_); }
    [[nodiscard]] Value* operator->() { return &*value_; }
    [[nodiscard]] const Value* operator->() const { return &*value_; }

    // Empty where there is a value.
    [[nodiscard]] const Reason& reason() const { return reason_; }

private:
    std::optional<Value> value_;
    Reason reason_;
};

// Success without a value, or the reason of the failure. The default is success.
template <typename Reason> class [[nodiscard]] Result<void, Reason>
{
public:
    Result() = default;
    template <typename Given>
    requires std::is_convertible_v<Given, Reason> Result(Failure<Given> failure)
        : failed_(true), reason_(std::move(failure.reason))
    {
    }

    [[nodiscard]] bool hasValue() const { return !failed_; }
    explicit operator bool() const { return hasValue(); }
    [[nodiscard]] const Reason& reason() const { return reason_; }

private:
    bool failed_ = false;
    Reason reason_;
};

} // namespace tavrix
