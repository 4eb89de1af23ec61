// SPDX-License-Identifier: GPL-3.0-or-later
#pragma once

#include "movencodermedia.h"

#include <gtest/gtest.h>
#include <memory>

namespace tavrix::test
{

// A camera movie of so many pictures, made once for all tests of a suite, and a folder of its own for each test.
template <int pictures, bool sound = true> class CameraMovieTest : public testing::Test
{
protected:
    static void SetUpTestSuite()
    {
        shared_ = std::make_unique<TempFolder>();
        made_ = makeCameraMovie(camera(), pictures, sound);
    }
    static void TearDownTestSuite() { shared_.reset(); }
    void SetUp() override { ASSERT_TRUE(made_); }

    static QString camera() { return shared_->path(QStringLiteral("camera.mov")); }
    // The transport stream that the movie was rewrapped from.
    static QString recording() { return shared_->path(QStringLiteral("camera.mov.mts")); }
    [[nodiscard]] QString output() const { return folder_.path(QStringLiteral("out.mov")); }

    TempFolder folder_;

private:
    static inline std::unique_ptr<TempFolder> shared_;
    static inline bool made_ = false;
};

} // namespace tavrix::test
