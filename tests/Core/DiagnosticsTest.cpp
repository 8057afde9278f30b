// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

#include "Diagnostics.h"

#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <QtCore/QTextCodec>

#include <thread>

namespace {

QString here(int line)
{
    return QStringLiteral("[DiagnosticsTest.cpp:%1] ").arg(line);
}

/// Makes this the local 8-bit encoding while it lives.
class LocalEncoding
{
public:
    explicit LocalEncoding(const char* name)
        : previous(QTextCodec::codecForLocale())
    {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName(name));
    }
    ~LocalEncoding() { QTextCodec::setCodecForLocale(previous); }
    LocalEncoding(const LocalEncoding&) = delete;
    LocalEncoding& operator=(const LocalEncoding&) = delete;

private:
    QTextCodec* previous;
};

void logFromLine51();
void assertFromLine62(bool condition);

} // namespace

TEST(Diagnostics, ADebugLineIsOneDebugMessage)
{
    const MessageRecorder recorder;
    const int line = __LINE__ + 1;
    ORV_DEBUG("frame %d of %s", 7, "many");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].level, QtDebugMsg);
    EXPECT_EQ(messages[0].text, here(line) + QStringLiteral("frame 7 of many"));
}

TEST(Diagnostics, ACriticalLineIsOneCriticalMessage)
{
    const MessageRecorder recorder;
    const int line = __LINE__ + 1;
    ORV_CRITICAL("no frame");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].level, QtCriticalMsg);
    EXPECT_EQ(messages[0].text, here(line) + QStringLiteral("no frame"));
}

TEST(Diagnostics, AFailedAssertionIsOneCriticalMessageAndTheCodeGoesOn)
{
    const MessageRecorder recorder;
    bool wentOn = false;
    const int line = __LINE__ + 1;
    ORV_ASSERT(1 + 1 == 3, "sum of %d and %d", 1, 1);
    wentOn = true;
    EXPECT_TRUE(wentOn);
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].level, QtCriticalMsg);
    EXPECT_EQ(messages[0].text,
              here(line) + QStringLiteral("[ !! ] Assertion '1 + 1 == 3' failed: sum of 1 and 1"));
}

TEST(Diagnostics, AnAssertionThatHoldsDoesNothing)
{
    const MessageRecorder recorder;
    int evaluations = 0;
    ORV_ASSERT(evaluations == 0, "%d", ++evaluations);
    EXPECT_EQ(evaluations, 0);
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(Diagnostics, AnAssertionEvaluatesItsConditionOnce)
{
    const MessageRecorder recorder;
    int evaluations = 0;
    ORV_ASSERT(++evaluations == 2, "%s", "first");
    EXPECT_EQ(evaluations, 1);
    EXPECT_EQ(recorder.messages().size(), 1u);
}

TEST(Diagnostics, AnAssertionIsOneStatement)
{
    const MessageRecorder recorder;
    bool otherwise = false;
    if (recorder.messages().empty())
        ORV_ASSERT(false, "%s", "taken");
    else
        otherwise = true;
    EXPECT_FALSE(otherwise);
    EXPECT_EQ(recorder.messages().size(), 1u);
}

TEST(Diagnostics, AConditionOfLowPrecedenceIsTakenWhole)
{
    const MessageRecorder recorder;
    const bool yes = recorder.messages().empty();
    ORV_ASSERT(!yes || yes, "%s", "holds");
    EXPECT_TRUE(recorder.messages().empty());
}

TEST(Diagnostics, EveryMessageHasThePlainContext)
{
    const MessageRecorder recorder;
    ORV_DEBUG("a");
    ORV_CRITICAL("b");
    ORV_ASSERT(false, "c");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 3u);
    for (const MessageRecorder::Message& message : messages) {
        EXPECT_EQ(message.contextVersion, 2);
        EXPECT_EQ(message.category, "default");
        EXPECT_FALSE(message.hasFile);
        EXPECT_EQ(message.line, 0);
        EXPECT_FALSE(message.hasFunction);
    }
}

TEST(Diagnostics, APercentSignInAConditionIsShownWithABackslash)
{
    const MessageRecorder recorder;
    const int line = __LINE__ + 1;
    ORV_ASSERT(7 % 4 == 7 % 2, "%s", "remainders");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text,
              here(line)
                  + QStringLiteral("[ !! ] Assertion '7 \\% 4 == 7 \\% 2' failed: remainders"));
}

TEST(Diagnostics, APercentSignInAnArgumentIsShownAsItIs)
{
    const MessageRecorder recorder;
    ORV_DEBUG("%s", "100% %s %n %1");
    ORV_CRITICAL("%d%% %s", 5, "%d");
    ORV_ASSERT(false, "%s", "%s%n");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 3u);
    EXPECT_EQ(messages[0].body(), QStringLiteral("100% %s %n %1"));
    EXPECT_EQ(messages[1].body(), QStringLiteral("5% %d"));
    EXPECT_EQ(messages[2].body(), QStringLiteral("[ !! ] Assertion 'false' failed: %s%n"));
}

TEST(Diagnostics, AConditionIsQuotedAsWritten)
{
#define ORV_TEST_LIMIT 3
    const MessageRecorder recorder;
    ORV_ASSERT(ORV_TEST_LIMIT < 2, "%s", "macro");
    ORV_ASSERT(QString::fromLatin1("a\\b").isEmpty(), "%s", "string");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].body(),
              QStringLiteral("[ !! ] Assertion 'ORV_TEST_LIMIT < 2' failed: macro"));
    EXPECT_EQ(messages[1].body(),
              QStringLiteral("[ !! ] Assertion 'QString::fromLatin1(\"a\\\\b\").isEmpty()' failed: "
                             "string"));
#undef ORV_TEST_LIMIT
}

TEST(Diagnostics, ALineBreakStaysInOneMessage)
{
    const MessageRecorder recorder;
    ORV_DEBUG("%s", "one\ntwo");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].body(), QStringLiteral("one\ntwo"));
}

TEST(Diagnostics, AnEmptyTextLeavesThePrefix)
{
    const MessageRecorder recorder;
    const int line = __LINE__ + 1;
    ORV_DEBUG("%s", "");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text, here(line));
}

TEST(Diagnostics, AUtf8LocalEncodingCarriesEveryCharacter)
{
    const LocalEncoding encoding("UTF-8");
    const MessageRecorder recorder;
    const QString name = QString::fromUtf8("Gr\xC3\xBC\xC3\x9F\xE2\x82\xAC\xF0\x9F\x8E\xA8");
    ORV_DEBUG("<%s>", qPrintable(name));
    ORV_ASSERT(name.isEmpty(), "<%s>", qPrintable(name));
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].body(), QStringLiteral("<") + name + QStringLiteral(">"));
    EXPECT_TRUE(
        messages[1].body().endsWith(QStringLiteral("failed: <") + name + QStringLiteral(">")));
}

// The logger reads what it is given as UTF-8: another local encoding costs the characters beyond
// ASCII.
TEST(Diagnostics, TheTextIsHandedOnInTheLocalEncoding)
{
    const LocalEncoding encoding("ISO-8859-1");
    const MessageRecorder recorder;
    ORV_DEBUG("<%s>", "\xC3\xBC");
    ORV_ASSERT(false, "<%s>", "\xC3\xBC");
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].body(), QStringLiteral("<\uFFFD>"));
    EXPECT_TRUE(messages[1].body().endsWith(QStringLiteral("failed: <?>")));
}

TEST(Diagnostics, ADirectoryIsCutFromTheFileName)
{
    using Kestrin::Orv::Diagnostics::baseName;
    EXPECT_STREQ(baseName("/root/src/Core/Graph.cpp"), "Graph.cpp");
    EXPECT_STREQ(baseName("../Graph.cpp"), "Graph.cpp");
    EXPECT_STREQ(baseName("Graph.cpp"), "Graph.cpp");
    EXPECT_STREQ(baseName("src/a b/c.d.cpp"), "c.d.cpp");
}

TEST(Diagnostics, ThePrefixNamesTheFileAndTheLineOfTheStatement)
{
    const MessageRecorder recorder;
    logFromLine51();
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text, QStringLiteral("[Core.cpp:51] Could not obtain it"));
}

TEST(Diagnostics, ThePrefixOfAnAssertionNamesItsOwnLine)
{
    const MessageRecorder recorder;
    assertFromLine62(false);
    const auto messages = recorder.messages();
    ASSERT_EQ(messages.size(), 1u);
    EXPECT_EQ(messages[0].text,
              QStringLiteral("[Other.cpp:62] [ !! ] Assertion 'condition' failed: why"));
}

TEST(Diagnostics, WorksFromAnyThread)
{
    const MessageRecorder recorder;
    std::thread first([] { ORV_DEBUG("%s", "first"); });
    std::thread second([] { ORV_DEBUG("%s", "second"); });
    first.join();
    second.join();
    QStringList bodies;
    for (const MessageRecorder::Message& message : recorder.messages())
        bodies << message.body();
    bodies.sort();
    EXPECT_EQ(bodies, (QStringList{QStringLiteral("first"), QStringLiteral("second")}));
}

namespace {

// clang-format off
#line 50 "/some/where/src/Core/Core.cpp"
void logFromLine51() {
    ORV_CRITICAL("Could not obtain it");
}
#line 61 "Other.cpp"
void assertFromLine62(bool condition) {
    ORV_ASSERT(condition, "why");
}
// clang-format on

} // namespace
