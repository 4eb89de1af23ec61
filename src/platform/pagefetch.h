// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

// Pages of web addresses, fetched within limits of time and size.

#include <QByteArray>
#include <QUrl>

#include <optional>

namespace tavrix
{

struct FetchLimits {
    int milliseconds = 30000; // for the whole page
    qint64 bytes = 4194304;
    int redirects = 5;
};

[[nodiscard]] bool isWebAddress(const QUrl& url); // http or https with a host

// Bytes of the page. The caller waits while a worker thread fetches: no event loop runs in the caller's thread. No
// value for another kind of address, a failure, an error status or a page beyond the limits.
[[nodiscard]] std::optional<QByteArray> fetchPage(const QUrl& url, const FetchLimits& limits = {});

} // namespace tavrix
