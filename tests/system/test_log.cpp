#include "support.h"
#include "ztk_system.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <gtest/gtest.h>
#include <new>
#include <string>
#include <unistd.h>

using zentrak::Exception;
using zentrak::LogData;
using zentrak::test::CaptureStdout;

namespace {

std::string printed(const LogData& data) {
    CaptureStdout capture;
    zentrak::ztk_log_callback(data);
    return capture.text();
}

// The log output of constructing an exception with this text.
std::string loggedFor(const std::string& text) {
    CaptureStdout capture;
    const Exception exception("%s", text.c_str());
    EXPECT_EQ(text, exception.what());
    return capture.text();
}

std::string exceptionLine(const std::string& message) {
    return "[error][Exception], " + message + " (ztk_system:171)\n";
}

} // namespace

TEST(Log, PrintsLevelFunctionMessageFileAndLineButNotTheCategory) {
    CaptureStdout capture;
    ztk_megasuperlogger("warning", "display", "dis_fbo.cpp", 12, "bind", "%d of %s", 3, "four");
    EXPECT_EQ("[warning][bind], 3 of four (dis_fbo.cpp:12)\n", capture.text());
}

TEST(Log, EveryLevelIsPrinted) {
    CaptureStdout capture;
    for (const char* level : {"log", "info", "warning", "error"})
        ztk_megasuperlogger(level, "app", "f", 1, "g", "m");
    EXPECT_EQ("[log][g], m (f:1)\n[info][g], m (f:1)\n[warning][g], m (f:1)\n[error][g], m (f:1)\n",
              capture.text());
}

TEST(Log, MacroPassesTheCallSite) {
    CaptureStdout capture;
    const int line = __LINE__ + 1;
    ZTK_LOG("log", "app", "demo %s", "on");
    EXPECT_EQ("[log][TestBody], demo on (test_log.cpp:" + std::to_string(line) + ")\n", capture.text());
}

TEST(Log, FileNameWithDirectoriesInEitherPathStylePrintsAsItsLastComponentOnly) {
    EXPECT_EQ("[log][f], m (kub.cpp:7)\n",
              printed({"log", "m", "/home/demo/effects/kub.cpp", "f", "app", 7}));
    EXPECT_EQ("[log][f], m (kub.cpp:7)\n",
              printed({"log", "m", "c:\\demo\\effects\\kub.cpp", "f", "app", 7}));
    EXPECT_EQ("[log][f], m (kub.cpp:7)\n", printed({"log", "m", "c:kub.cpp", "f", "app", 7}));
    EXPECT_EQ("[log][f], m (kub.cpp:7)\n",
              printed({"log", "m", "c:\\demo/effects:x/kub.cpp", "f", "app", 7}));
    EXPECT_EQ("[log][f], m (kin_music:38)\n", printed({"log", "m", "../include/kin_music", "f", "app", 38}));
    EXPECT_EQ("[log][f], m (:7)\n", printed({"log", "m", "effects/", "f", "app", 7}));
    EXPECT_EQ("[log][f], m (:7)\n", printed({"log", "m", "", "f", "app", 7}));
}

TEST(Log, EmptyFunctionNamePrintsAnEmptyPairOfBrackets) {
    EXPECT_EQ("[log][], m (f:1)\n", printed({"log", "m", "f", "", "app", 1}));
}

TEST(Log, FunctionLosesALeadingNamespaceOnce) {
    EXPECT_EQ("[log][am::load], m (f:1)\n", printed({"log", "m", "f", "zentrak::am::load", "app", 1}));
    EXPECT_EQ("[log][zentrak::x], m (f:1)\n", printed({"log", "m", "f", "zentrak::zentrak::x", "app", 1}));
    EXPECT_EQ("[log][xzentrak::x], m (f:1)\n", printed({"log", "m", "f", "xzentrak::x", "app", 1}));
    EXPECT_EQ("[log][zentrak:], m (f:1)\n", printed({"log", "m", "f", "zentrak:", "app", 1}));
}

TEST(Log, MessageThatEndsInALineEndBreaksBeforeTheFile) {
    CaptureStdout capture;
    ztk_megasuperlogger("error", "Kindler", "../include/kin_music", 38, "setup", "No sound device!\n");
    EXPECT_EQ("[error][setup], No sound device!\n (kin_music:38)\n", capture.text());
}

TEST(Log, TextOf2047BytesIsWholeAndALongerOneIsCut) {
    for (const size_t length : {2046u, 2047u, 2048u, 2049u, 100000u}) {
        CaptureStdout capture;
        const std::string text(length, 'x');
        ztk_megasuperlogger("log", "app", "f", 1, "g", "%s", text.c_str());
        EXPECT_EQ("[log][g], " + text.substr(0, 2047) + " (f:1)\n", capture.text()) << length;
    }
}

TEST(Log, PercentSignInAnArgumentIsPrintedAsItIs) {
    CaptureStdout capture;
    ztk_megasuperlogger("log", "app", "100%s", 1, "%d", "%s", "%n%s%%");
    EXPECT_EQ("[log][%d], %n%s%% (100%s:1)\n", capture.text());
}

TEST(Log, NullTextsPrintAsEmptyOnes) {
    EXPECT_EQ("[][],  (:0)\n", printed({nullptr, nullptr, nullptr, nullptr, nullptr, 0}));
}

// The text as it arrives on a terminal.
std::string printedOnATerminal(const std::string& text) {
    const int terminal = posix_openpt(O_RDWR | O_NOCTTY);
    EXPECT_EQ(grantpt(terminal) | unlockpt(terminal), 0);
    const int far = open(ptsname(terminal), O_RDWR | O_NOCTTY);
    fflush(stdout);
    const int before = dup(STDOUT_FILENO);
    dup2(far, STDOUT_FILENO);
    zentrak::ztk_print("%s", text.c_str());
    fflush(stdout);
    dup2(before, STDOUT_FILENO);
    char bytes[256];
    const ssize_t size = read(terminal, bytes, sizeof(bytes));
    for (const int file : {terminal, far, before})
        close(file);
    return std::string(bytes, size_t(std::max<ssize_t>(size, 0)));
}

TEST(Log, OnATerminalControlCharactersShowAsQuestionMarks) {
    const std::string text = "a\tb \033[2J\a\r\177 \302\2335n \303\251\n";
    EXPECT_EQ(printedOnATerminal(text), "a\tb ?[2J??? ?5n \303\251\r\n"); // the terminal adds the \r
    CaptureStdout capture;
    zentrak::ztk_print("%s", text.c_str());
    EXPECT_EQ(capture.text(), text);
}

TEST(Log, AReaderThatThrowsIsPrecededByTheNameOfItsFile) {
    CaptureStdout capture;
    EXPECT_EQ(zentrak::readNamed("good.xml", [] { return 7; }), 7);
    EXPECT_EQ(capture.text(), "");
    EXPECT_THROW(zentrak::readNamed("bad.xml", [] { throw std::bad_alloc(); }), std::bad_alloc);
    EXPECT_EQ(capture.text().find("[error][readNamed], The file 'bad.xml' can't be read (ztk_system.h:"), 0u);
}

TEST(Exception, WhatAfterConstructionReturnsTheFormattedText) {
    CaptureStdout capture;
    const Exception exception("can't open '%s' (%d)", "a.png", 2);
    EXPECT_STREQ("can't open 'a.png' (2)", exception.what());
}

TEST(Exception, LogsItselfAsAnError) {
    CaptureStdout capture;
    const Exception exception("can't open '%s' (%d)", "a.png", 2);
    EXPECT_EQ("[error][Exception], can't open 'a.png' (2) (ztk_system:171)\n", capture.text());
}

TEST(Exception, IsCaughtAsAStandardException) {
    CaptureStdout capture;
    try {
        throw Exception("%s", "gone");
    } catch (const std::exception& exception) {
        EXPECT_STREQ("gone", exception.what());
        return;
    }
    FAIL();
}

TEST(Exception, CopyCarriesTheTextAndLogsNothing) {
    CaptureStdout capture;
    const Exception first("%s", "gone");
    const std::string before = capture.text();
    const Exception second = first;
    EXPECT_STREQ("gone", second.what());
    EXPECT_EQ(before, capture.text());
}

TEST(Exception, TextOf7999BytesIsWholeAndALongerOneIsCut) {
    for (const size_t length : {7998u, 7999u, 8000u, 8001u, 100000u}) {
        CaptureStdout capture;
        const std::string text(length, 'y');
        const Exception exception("%s", text.c_str());
        EXPECT_EQ(text.substr(0, 7999), exception.what()) << length;
        EXPECT_EQ(exceptionLine(text.substr(0, 2047)), capture.text()) << length;
    }
}

TEST(Exception, PercentSignInTheFinishedTextIsReadASecondTimeInTheLogLine) {
    EXPECT_EQ(exceptionLine("100% sure"), loggedFor("100%% sure"));
    EXPECT_EQ(exceptionLine("%%"), loggedFor("%%%%"));
    EXPECT_EQ(exceptionLine("50%"), loggedFor("50% %"));
    EXPECT_EQ(exceptionLine("%"), loggedFor("%-05.3%"));
}

TEST(Exception, ConversionInTheFinishedTextReadsNoArgumentAndWritesNowhere) {
    for (const char* text :
         {"%s", "%n", "%hhn", "%1$n", "%*d", "%.*s", "%ld %p %f", "no such file '%s%s%s%s%n'", "%999999999d",
          "%lc", "%5", "%.", "%", "100%", "%5.", "%*%", "%m", "%-+ #0"})
        EXPECT_EQ(exceptionLine(text), loggedFor(text));
}
