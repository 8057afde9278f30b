// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include <Kestrin/Orv/ProfilerHelper.h>

#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <type_traits>

using Kestrin::Orv::ProfilerHelper;

TEST(ProfilerHelper, MarksAScopeSilently)
{
    const MessageRecorder recorder;
    {
        const ProfilerHelper outer("frame %s");
        const ProfilerHelper inner("");
        const ProfilerHelper unnamed(nullptr);
    }
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(ProfilerHelper, HoldsNothing)
{
    EXPECT_TRUE(std::is_empty<ProfilerHelper>::value);
    EXPECT_FALSE(std::is_polymorphic<ProfilerHelper>::value);
}

TEST(ProfilerHelper, IsNeitherCopiedNorAssigned)
{
    EXPECT_FALSE(std::is_copy_constructible<ProfilerHelper>::value);
    EXPECT_FALSE(std::is_copy_assignable<ProfilerHelper>::value);
}
