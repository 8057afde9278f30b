// SPDX-FileCopyrightText: The OrvCore authors
// SPDX-License-Identifier: MIT

// The paths are kept for the life of the process, so each test runs in a process of its own, forked
// from one that never asks for them. The executable's own readlink() takes the place of the
// system's.

#include <Kestrin/Orv/Core.h>

#include "support/MessageRecorder.h"

#include <gtest/gtest.h>

#include <QtCore/QDir>
#include <QtCore/QFile>
#include <QtCore/QFileInfo>
#include <QtCore/QRegularExpression>
#include <QtCore/QTemporaryDir>
#include <QtCore/QTextCodec>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <functional>
#include <string>

#include <dlfcn.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace Kestrin::Orv;

namespace {

/// What readlink() answers for the running executable.
struct Link
{
    bool isFake = false;
    bool fails = false;
    std::string target;

    int numReads = 0;
    size_t capacity = 0;
} theLink;

} // namespace

extern "C" ssize_t readlink(const char* path, char* buffer, size_t capacity)
{
    using Function = ssize_t (*)(const char*, char*, size_t);
    static const auto real = reinterpret_cast<Function>(dlsym(RTLD_NEXT, "readlink"));
    if (std::strcmp(path, "/proc/self/exe") != 0)
        return real(path, buffer, capacity);
    ++theLink.numReads;
    theLink.capacity = capacity;
    if (!theLink.isFake)
        return real(path, buffer, capacity);
    std::memset(buffer, '#', capacity); // what nobody may rely on
    if (theLink.fails) {
        errno = ENOENT;
        return -1;
    }
    const size_t length = std::min(capacity, theLink.target.size());
    std::memcpy(buffer, theLink.target.data(), length);
    return static_cast<ssize_t>(length);
}

namespace {

/// Runs the body in a fresh process, whose failures become the test's.
void inFreshProcess(const std::function<void(const MessageRecorder&)>& body)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    ASSERT_NE(child, -1);
    if (child == 0) {
        {
            const MessageRecorder recorder;
            body(recorder);
        }
        std::fflush(nullptr);
        _exit(testing::Test::HasFailure() ? 1 : 0);
    }
    int status = 0;
    ASSERT_EQ(waitpid(child, &status, 0), child);
    ASSERT_TRUE(WIFEXITED(status)) << "ended by signal " << WTERMSIG(status);
    EXPECT_EQ(WEXITSTATUS(status), 0) << "see the failures above";
}

void fakeLink(const std::string& target)
{
    theLink.isFake = true;
    theLink.fails = false;
    theLink.target = target;
}

void failLink()
{
    theLink.isFake = true;
    theLink.fails = true;
}

void expectComplaints(const MessageRecorder& recorder, size_t count)
{
    static const QRegularExpression pattern(
        QStringLiteral("^\\[Core\\.cpp:[1-9][0-9]*\\] Could not obtain executablePath$"));
    const auto messages = recorder.messages();
    EXPECT_EQ(messages.size(), count);
    for (const MessageRecorder::Message& message : messages) {
        EXPECT_EQ(message.level, QtCriticalMsg);
        EXPECT_TRUE(message.hasPlainContext());
        EXPECT_TRUE(pattern.match(message.text).hasMatch()) << message.text.toStdString();
    }
}

QString ownPath()
{
    char buffer[4096];
    const ssize_t length = readlink("/proc/thread-self/../../exe", buffer, sizeof buffer);
    return length > 0 ? QString::fromUtf8(buffer, static_cast<int>(length)) : QString();
}

QString makeFile(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly));
    return path;
}

} // namespace

TEST(ExecutablePath, IsThatOfTheRunningExecutable)
{
    inFreshProcess([](const MessageRecorder& recorder) {
        ASSERT_TRUE(QFileInfo::exists(ownPath()));
        EXPECT_EQ(executablePath(), ownPath());
        expectComplaints(recorder, 0);
    });
}

TEST(ExecutablePath, IsReadOnce)
{
    inFreshProcess([](const MessageRecorder&) {
        EXPECT_EQ(theLink.numReads, 0);
        const QString first = executablePath();
        fakeLink("/somewhere/else");
        EXPECT_EQ(executablePath(), first);
        EXPECT_EQ(theLink.numReads, 1);
        EXPECT_EQ(theLink.capacity, 65534u);
    });
}

TEST(ExecutablePath, WhenTheLinkCannotBeReadIsEmptyAndTriedAgain)
{
    inFreshProcess([](const MessageRecorder& recorder) {
        failLink();
        EXPECT_EQ(executablePath(), QString());
        expectComplaints(recorder, 1);
        EXPECT_EQ(executablePath(), QString());
        expectComplaints(recorder, 2);
        EXPECT_EQ(theLink.numReads, 2);
        fakeLink("/found/at/last");
        EXPECT_EQ(executablePath(), QStringLiteral("/found/at/last"));
        failLink();
        EXPECT_EQ(executablePath(), QStringLiteral("/found/at/last"));
        expectComplaints(recorder, 2);
    });
}

TEST(ExecutablePath, OfNoBytesIsTriedAgainInSilence)
{
    inFreshProcess([](const MessageRecorder& recorder) {
        fakeLink("");
        EXPECT_EQ(executablePath(), QString());
        fakeLink("/now");
        EXPECT_EQ(executablePath(), QStringLiteral("/now"));
        expectComplaints(recorder, 0);
    });
}

TEST(ExecutablePath, Of65533BytesIsTakenInSilence)
{
    inFreshProcess([](const MessageRecorder& recorder) {
        fakeLink("/" + std::string(65531, 'a') + "b");
        EXPECT_EQ(executablePath().toStdString(), theLink.target);
        expectComplaints(recorder, 0);
    });
}

TEST(ExecutablePath, Of65534BytesIsReportedTakenAndKept)
{
    inFreshProcess([](const MessageRecorder& recorder) {
        fakeLink("/" + std::string(65532, 'a') + "b");
        EXPECT_EQ(executablePath().toStdString(), theLink.target);
        expectComplaints(recorder, 1);
        EXPECT_EQ(executablePath().toStdString(), theLink.target);
        expectComplaints(recorder, 1);
        EXPECT_EQ(theLink.numReads, 1);
    });
}

TEST(ExecutablePath, OfMoreBytesIsReportedAndCut)
{
    inFreshProcess([](const MessageRecorder& recorder) {
        fakeLink("/" + std::string(70000, 'a'));
        EXPECT_EQ(executablePath().toStdString(), theLink.target.substr(0, 65534));
        expectComplaints(recorder, 1);
    });
}

TEST(ExecutablePath, EndsAtTheFirstNul)
{
    inFreshProcess([](const MessageRecorder&) {
        fakeLink(std::string("/cut\0off", 8));
        EXPECT_EQ(executablePath(), QStringLiteral("/cut"));
    });
}

TEST(ExecutablePath, IsReadAsUtf8WhateverTheLocalEncoding)
{
    inFreshProcess([](const MessageRecorder&) {
        QTextCodec::setCodecForLocale(QTextCodec::codecForName("ISO-8859-1"));
        fakeLink("/gr\xC3\xBCn");
        EXPECT_EQ(executablePath(), QStringLiteral("/gr\u00FCn"));
    });
}

TEST(ResourcesPath, LiesBesideTheExecutable)
{
    inFreshProcess([](const MessageRecorder& recorder) {
        EXPECT_EQ(resourcesPath(),
                  QFileInfo(ownPath()).canonicalPath() + QStringLiteral("/Resources"));
        expectComplaints(recorder, 0);
    });
}

TEST(ResourcesPath, IsThatOfTheCanonicalDirectory)
{
    inFreshProcess([](const MessageRecorder&) {
        const QTemporaryDir directory;
        const QDir base(QFileInfo(directory.path()).canonicalFilePath());
        ASSERT_TRUE(base.mkpath(QStringLiteral("real/bin")));
        makeFile(base.filePath(QStringLiteral("real/bin/exe")));
        ASSERT_TRUE(QFile::link(base.filePath(QStringLiteral("real")),
                                base.filePath(QStringLiteral("link"))));
        fakeLink(base.filePath(QStringLiteral("link/./bin/../bin/exe")).toStdString());
        EXPECT_EQ(resourcesPath(), base.filePath(QStringLiteral("real/bin/Resources")));
        EXPECT_EQ(executablePath(), base.filePath(QStringLiteral("link/./bin/../bin/exe")));
    });
}

TEST(ResourcesPath, OfARemovedExecutableIsAtTheRootAndKept)
{
    inFreshProcess([](const MessageRecorder&) {
        const QTemporaryDir directory;
        const QString exe = directory.filePath(QStringLiteral("exe"));
        fakeLink(exe.toStdString());
        EXPECT_EQ(resourcesPath(), QStringLiteral("/Resources"));
        makeFile(exe);
        EXPECT_EQ(resourcesPath(), QStringLiteral("/Resources"));
    });
}

TEST(ResourcesPath, WhenTheLinkCannotBeReadIsAtTheRoot)
{
    inFreshProcess([](const MessageRecorder& recorder) {
        failLink();
        EXPECT_EQ(resourcesPath(), QStringLiteral("/Resources"));
        expectComplaints(recorder, 1);
        EXPECT_EQ(resourcesPath(), QStringLiteral("/Resources"));
        expectComplaints(recorder, 1);
    });
}

TEST(ResourcesPath, IsWorkedOutOnce)
{
    inFreshProcess([](const MessageRecorder&) {
        const QTemporaryDir directory;
        const QString exe = makeFile(directory.filePath(QStringLiteral("exe")));
        fakeLink(exe.toStdString());
        const QString first = resourcesPath();
        ASSERT_TRUE(QFile::remove(exe));
        EXPECT_EQ(resourcesPath(), first);
        EXPECT_NE(first, QStringLiteral("/Resources"));
    });
}

TEST(ResourcesPath, IsWhatTheHostHasSet)
{
    inFreshProcess([](const MessageRecorder&) {
        for (const char* path : {"/does/not/exist", "relative/../odd//", " ", "."}) {
            setResourcesPath(QString::fromLatin1(path));
            EXPECT_EQ(resourcesPath(), QString::fromLatin1(path));
        }
        EXPECT_EQ(theLink.numReads, 0);
    });
}

TEST(ResourcesPath, MayBeSetAfterItWasWorkedOut)
{
    inFreshProcess([](const MessageRecorder&) {
        resourcesPath();
        setResourcesPath(QStringLiteral("/mine"));
        EXPECT_EQ(resourcesPath(), QStringLiteral("/mine"));
    });
}

TEST(ResourcesPath, IsWorkedOutAgainAfterAnEmptyOneWasSet)
{
    for (const QString& empty : {QString(), QStringLiteral("")}) {
        inFreshProcess([&empty](const MessageRecorder&) {
            const QString computed = resourcesPath();
            setResourcesPath(QStringLiteral("/mine"));
            setResourcesPath(empty);
            EXPECT_EQ(resourcesPath(), computed);
            EXPECT_EQ(theLink.numReads, 1);
        });
    }
}

TEST(ResourcesPath, LeavesTheExecutablesPathAlone)
{
    inFreshProcess([](const MessageRecorder&) {
        setResourcesPath(QStringLiteral("/mine"));
        EXPECT_EQ(executablePath(), ownPath());
        setResourcesPath(QString());
        EXPECT_EQ(executablePath(), ownPath());
        EXPECT_EQ(theLink.numReads, 1);
    });
}

TEST(CoreVersions, Version)
{
    EXPECT_EQ(CoreVersions::getVersion(), QStringLiteral("1.0.0"));
}

TEST(CoreVersions, TheRevisionHashIsEmptyButNotNull)
{
    EXPECT_TRUE(CoreVersions::getGitHash().isEmpty());
    EXPECT_FALSE(CoreVersions::getGitHash().isNull());
}

TEST(CoreVersions, Md5Sum)
{
    EXPECT_EQ(CoreVersions::getMd5Sum(), QStringLiteral("1"));
}
