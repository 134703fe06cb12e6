/// \file
/// The log: levels, macros, headers, outputs, threads, captures.

#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGLogCapture.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <map>
#include <sstream>
#include <thread>
#include <vector>

using namespace osg;

namespace
{

/// Puts the log's settings back when a test ends, and sends the output into the buffer meanwhile.
class LogOutput : public testing::Test
{
  protected:
    void SetUp() override
    {
        osgLog().flushMessage();
        _level = osgLog().getLogLevel();
        _type = osgLog().getLogType();
        _elements = osgLog().getHeaderElem();
        osgLog().setLogLevel(LOG_NOTICE, true);
        osgLog().setLogType(LOG_BUFFER, true);
        osgLog().clearBuffer();
    }
    void TearDown() override
    {
        osgLog().flushMessage();
        osgLog().setHeaderElem(_elements);
        osgLog().setLogType(_type, true);
        osgLog().setLogLevel(_level, true);
        osgLog().clearBuffer();
    }
    static std::string buffer()
    {
        osgLog().flushMessage();
        return osgLog().getBuffer();
    }

    LogLevel _level;
    LogType _type;
    UInt32 _elements;
};

std::string lineText(UInt32 line)
{
    return std::to_string(line);
}

std::string readFile(const std::string &name)
{
    std::ifstream file(name);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

} // namespace

TEST_F(LogOutput, StartsAtNoticeOnStandardErrorWithTypeFileAndLine)
{
    // Unless the environment of the test run says something else.
    if(std::getenv("OSG_LOG_LEVEL") == nullptr)
    {
        EXPECT_EQ(_level, LOG_NOTICE);
    }
    if(std::getenv("OSG_LOG_FILE") == nullptr)
    {
        EXPECT_EQ(_type, LOG_STDERR);
    }
    EXPECT_EQ(_elements, UInt32(LOG_TYPE_HEADER | LOG_FILE_HEADER | LOG_LINE_HEADER));
}

TEST_F(LogOutput, StreamMessageHasLevelSourceStemAndLineAhead)
{
    const UInt32 line = __LINE__ + 1;
    SWARNING << "size: " << 7 << std::endl;
    EXPECT_EQ(buffer(), "WARNING: LogTest(" + lineText(line) + "): size: 7\n");
}

TEST_F(LogOutput, PrintfMessageHasLevelSourceStemAndLineAhead)
{
    const UInt32 line = __LINE__ + 1;
    FWARNING(("text %d %s\n", 3, "more"));
    EXPECT_EQ(buffer(), "WARNING: LogTest(" + lineText(line) + "): text 3 more\n");
}

TEST_F(LogOutput, LevelDecidesWhatIsWritten)
{
    osgLog().setHeaderElem(LOG_TYPE_HEADER);
    for(int level = LOG_LOG; level <= LOG_DEBUG; ++level)
    {
        osgLog().setLogLevel(static_cast<LogLevel>(level), true);
        osgLog().clearBuffer();
        SLOG << "a" << std::endl;
        SFATAL << "b" << std::endl;
        SWARNING << "c" << std::endl;
        SNOTICE << "d" << std::endl;
        SINFO << "e" << std::endl;
        SDEBUG << "f" << std::endl;
        FLOG(("A\n"));
        FFATAL(("B\n"));
        FWARNING(("C\n"));
        FNOTICE(("D\n"));
        FINFO(("E\n"));
        FDEBUG(("F\n"));

        const char *const lines[] = {"LOG: a\n",    "FATAL: b\n", "WARNING: c\n", "NOTICE: d\n",
                                     "INFO: e\n",   "DEBUG: f\n", "LOG: A\n",     "FATAL: B\n",
                                     "WARNING: C\n", "NOTICE: D\n", "INFO: E\n",   "DEBUG: F\n"};
        std::string expected;
        for(int i = 0; i < 12; ++i)
            if(i % 6 <= level)
                expected += lines[i];
        EXPECT_EQ(buffer(), expected) << "at level " << level;
    }
}

TEST_F(LogOutput, OperandsBelowTheLevelAreNotEvaluated)
{
    int evaluated = 0;
    SINFO << ++evaluated << std::endl;
    FINFO(("%d\n", ++evaluated));
    PINFO << ++evaluated << std::endl;
    EXPECT_EQ(evaluated, 0);
    EXPECT_EQ(buffer(), "");
    SNOTICE << ++evaluated << std::endl;
    FNOTICE(("%d\n", ++evaluated));
    EXPECT_EQ(evaluated, 2);
}

TEST_F(LogOutput, MacrosStandAsTheBranchesOfAnIf)
{
    osgLog().setHeaderElem(0);
    for(int i = 0; i < 2; ++i)
    {
        if(i == 0)
            SINFO << "never" << std::endl;
        else
            SWARNING << "stream " << i << std::endl;
        if(i == 0)
            FWARNING(("printf %d\n", i));
        else
            FINFO(("never\n"));
    }
    EXPECT_EQ(buffer(), "printf 0\nstream 1\n");
}

TEST_F(LogOutput, HeaderHasTheElementsThatAreChosen)
{
    const auto message = []() {
        osgLog().clearBuffer();
        osgLog().send(LOG_FATAL, "Module", "/some/folder/OSGSource.cpp", 12, "text\n");
        return buffer();
    };
    osgLog().setHeaderElem(0);
    EXPECT_EQ(message(), "text\n");
    osgLog().setHeaderElem(LOG_BEGIN_NEWLINE_HEADER);
    EXPECT_EQ(message(), "\ntext\n");
    osgLog().setHeaderElem(LOG_MODULE_HEADER);
    EXPECT_EQ(message(), "(Module) text\n");
    osgLog().setHeaderElem(LOG_FILE_HEADER);
    EXPECT_EQ(message(), "OSGSource: text\n");
    osgLog().setHeaderElem(LOG_LINE_HEADER);
    EXPECT_EQ(message(), "(12): text\n");
    osgLog().setHeaderElem(LOG_TAB_HEADER);
    EXPECT_EQ(message(), "\ttext\n");
    osgLog().setHeaderElem(LOG_END_NEWLINE_HEADER);
    EXPECT_EQ(message(), "\ntext\n");
    osgLog().setHeaderElem(LOG_ALL_HEADER);
    osgLog().delHeaderElem(LOG_TIMESTAMP_HEADER);
    EXPECT_EQ(message(), "\nFATAL: (Module) OSGSource(12): \t\ntext\n");

    osgLog().setHeaderElem(0);
    osgLog().addHeaderElem(LOG_TIMESTAMP_HEADER);
    double seconds = -1.0;
    char rest[8] = "";
    ASSERT_EQ(std::sscanf(message().c_str(), "[%lf] %7s", &seconds, rest), 2);
    EXPECT_GE(seconds, 0.0);
    EXPECT_STREQ(rest, "text");
}

TEST_F(LogOutput, MessageWithoutLineEndDoesNotRunIntoTheNextHeader)
{
    osgLog().setHeaderElem(LOG_TYPE_HEADER);
    SWARNING << "open";
    SWARNING << "next" << std::endl;
    FWARNING(("printf"));
    FWARNING(("last\n"));
    EXPECT_EQ(buffer(), "WARNING: open\nWARNING: next\nWARNING: printf\nWARNING: last\n");
}

TEST_F(LogOutput, PlainFormGoesOnWithTheOpenLine)
{
    osgLog().setHeaderElem(LOG_TYPE_HEADER);
    SWARNING << "one, ";
    PWARNING << "two, ";
    FPWARNING(("%s\n", "three"));
    PWARNING << "more\n";
    EXPECT_EQ(buffer(), "WARNING: one, two, three\nmore\n");
}

TEST_F(LogOutput, DoHeaderAndDoLogMakeOneMessage)
{
    osgLog().doHeader(LOG_WARNING, "OpenSG", "OSGSource.cpp", 5);
    osgLog().doLog("%d, ", 1);
    osgLog().doLog("%d\n", 2);
    osgLog().doHeader(LOG_LOG, "OpenSG", "OSGSource", 6) << "Dump Layer NI" << std::endl;
    osgLog().doHeader(LOG_INFO, "OpenSG", "OSGSource.cpp", 7) << "swallowed" << std::endl;
    osgLog().doLog("swallowed, too\n");
    EXPECT_EQ(buffer(), "WARNING: OSGSource(5): 1, 2\nLOG: OSGSource(6): Dump Layer NI\n");
}

TEST_F(LogOutput, LogIsAStreamOfItsOwn)
{
    osgLog() << "plain " << 5 << endLog;
    osgLog().stream(LOG_WARNING) << "at a level" << std::endl;
    osgLog().stream(LOG_DEBUG) << "swallowed" << std::endl;
    EXPECT_EQ(buffer(), "plain 5\nat a level\n");
}

TEST_F(LogOutput, OperandThatLogsComesOutAheadAndWhole)
{
    osgLog().setHeaderElem(LOG_TYPE_HEADER);
    const auto inner = []() {
        FNOTICE(("inner\n"));
        return 3;
    };
    SWARNING << "outer " << inner() << " end" << std::endl;
    FWARNING(("outer %d end\n", inner()));
    EXPECT_EQ(buffer(), "NOTICE: inner\nWARNING: outer 3 end\nNOTICE: inner\nWARNING: outer 3 end\n");
}

TEST_F(LogOutput, ModuleCanBeSwitchedOff)
{
    EXPECT_TRUE(osgLog().checkModule("OpenSG"));
    EXPECT_TRUE(osgLog().checkModule("Other"));
    osgLog().setHeaderElem(0);
    osgLog().setModuleActive("OpenSG", false);
    EXPECT_FALSE(osgLog().checkModule("OpenSG"));
    EXPECT_TRUE(osgLog().checkModule("Other"));
    SWARNING << "off" << std::endl;
    FWARNING(("off\n"));
    osgLog().doHeader(LOG_WARNING, "OpenSG", "f", 1) << "off" << std::endl;
    osgLog().doHeader(LOG_WARNING, "Other", "f", 1) << "other" << std::endl;
    osgLog().setModuleActive("OpenSG", true);
    SWARNING << "on" << std::endl;
    EXPECT_EQ(buffer(), "other\non\n");
}

TEST_F(LogOutput, LongPrintfTextComesOutWhole)
{
    osgLog().setHeaderElem(0);
    const std::string text(100000, 'x');
    FWARNING(("%s\n", text.c_str()));
    EXPECT_EQ(buffer(), text + "\n");
}

TEST_F(LogOutput, FileGetsTheMessages)
{
    const std::string name = testing::TempDir() + "tessaly-log-test.txt";
    osgLog().setHeaderElem(LOG_TYPE_HEADER);
    ASSERT_TRUE(osgLog().setLogFile(name.c_str(), true));
    EXPECT_EQ(osgLog().getLogType(), LOG_FILE);
    SWARNING << "into the file" << std::endl;
    EXPECT_EQ(readFile(name), "WARNING: into the file\n");

    EXPECT_FALSE(osgLog().setLogFile("no/such/folder/log.txt", true));
    EXPECT_EQ(osgLog().getLogType(), LOG_FILE);
    SWARNING << "still there" << std::endl;
    EXPECT_EQ(readFile(name), "WARNING: into the file\nWARNING: still there\n");

    ASSERT_TRUE(osgLog().setLogFile(nullptr, true));
    EXPECT_EQ(osgLog().getLogType(), LOG_STDERR);
    std::remove(name.c_str());
}

TEST_F(LogOutput, StandardStreamsGetTheMessages)
{
    osgLog().setHeaderElem(0);
    osgLog().setLogType(LOG_STDERR, true);
    testing::internal::CaptureStderr();
    SWARNING << "to standard error" << std::endl;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "to standard error\n");

    osgLog().setLogType(LOG_STDOUT, true);
    testing::internal::CaptureStdout();
    SWARNING << "to standard output" << std::endl;
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "to standard output\n");

    osgLog().setLogType(LOG_NONE, true);
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    SFATAL << "to nowhere" << std::endl;
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "");
}

TEST(LogEnvironment, LevelAndFileAreReadWhenTheLogComesUpAndStayUnlessForced)
{
    const std::string name = testing::TempDir() + "tessaly-log-environment-test.txt";
    // A death test in the "threadsafe" style starts the program afresh, so that its log reads the environment
    // anew.
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    setenv("OSG_LOG_LEVEL", "info", 1);
    setenv("OSG_LOG_FILE", name.c_str(), 1);
    EXPECT_EXIT(
        {
            osgLog().setHeaderElem(0);
            bool good = osgLog().getLogLevel() == LOG_INFO && osgLog().getLogType() == LOG_FILE;
            SINFO << "first" << std::endl;
            osgLog().setLogLevel(LOG_FATAL);
            osgLog().setLogType(LOG_STDERR);
            good = good && !osgLog().setLogFile(nullptr);
            SINFO << "second" << std::endl;
            osgLog().setLogLevel(LOG_FATAL, true);
            SINFO << "third" << std::endl;
            std::_Exit(good ? 7 : 8);
        },
        testing::ExitedWithCode(7), "^$");
    unsetenv("OSG_LOG_LEVEL");
    unsetenv("OSG_LOG_FILE");
    EXPECT_EQ(readFile(name), "first\nsecond\n");
    std::remove(name.c_str());
}

TEST(LogEnvironment, LevelIsANumberOrANameAndAnythingElseIsPassedOver)
{
    testing::FLAGS_gtest_death_test_style = "threadsafe";
    const std::vector<std::pair<const char *, LogLevel>> cases = {
        {"0", LOG_LOG},        {"5", LOG_DEBUG},      {"Warning", LOG_WARNING}, {"LOG_FATAL", LOG_FATAL},
        {"notice", LOG_NOTICE}, {"6", LOG_NOTICE},     {"-1", LOG_NOTICE},       {"loud", LOG_NOTICE},
        {"", LOG_NOTICE}};
    for(const auto &one : cases)
    {
        setenv("OSG_LOG_LEVEL", one.first, 1);
        EXPECT_EXIT(std::_Exit(40 + osgLog().getLogLevel()), testing::ExitedWithCode(40 + one.second), "")
            << one.first;
    }
    unsetenv("OSG_LOG_LEVEL");
}

TEST(LogNames, SourceStemHasNeitherFoldersNorSuffix)
{
    EXPECT_EQ(Log::fileStem("/a/b.c/OSGLog.cpp"), "OSGLog");
    EXPECT_EQ(Log::fileStem("a\\b\\OSGLog.h"), "OSGLog");
    EXPECT_EQ(Log::fileStem("OSGLog"), "OSGLog");
    EXPECT_EQ(Log::fileStem("a.b/OSGLog"), "OSGLog");
    EXPECT_EQ(Log::fileStem("OSGLog.inl.h"), "OSGLog.inl");
    EXPECT_EQ(Log::fileStem(""), "");
    EXPECT_EQ(Log::fileStem(nullptr), "");
}

TEST(LogNames, LevelsHaveNames)
{
    EXPECT_STREQ(Log::levelName(LOG_LOG), "LOG");
    EXPECT_STREQ(Log::levelName(LOG_DEBUG), "DEBUG");
    EXPECT_STREQ(Log::levelName(static_cast<LogLevel>(6)), "");
    EXPECT_STREQ(Log::levelName(static_cast<LogLevel>(-1)), "");
}

TEST_F(LogOutput, CaptureTakesEveryLevelAndSilencesTheOutput)
{
    {
        LogCapture capture;
        const UInt32 line = __LINE__ + 1;
        FDEBUG(("Value %d\n", 4));
        SWARNING << "open end";
        const std::vector<LogMessage> messages = capture.messages();
        ASSERT_EQ(messages.size(), 2u);
        EXPECT_EQ(messages[0].level, LOG_DEBUG);
        EXPECT_EQ(messages[0].module, "OpenSG");
        EXPECT_EQ(messages[0].file, "LogTest");
        EXPECT_EQ(messages[0].line, line);
        EXPECT_EQ(messages[0].text, "Value 4\n");
        EXPECT_EQ(messages[1].level, LOG_WARNING);
        EXPECT_EQ(messages[1].line, line + 1);
        EXPECT_EQ(messages[1].text, "open end");
        EXPECT_EQ(capture.text(), "Value 4\nopen end");
        EXPECT_EQ(capture.text(LOG_WARNING), "open end");
        EXPECT_EQ(capture.text(LOG_FATAL), "");
        EXPECT_EQ(capture.count(), 2u);
        EXPECT_EQ(capture.count(LOG_DEBUG), 1u);
        EXPECT_EQ(capture.count(LOG_INFO), 0u);
        EXPECT_TRUE(capture.contains(LOG_DEBUG, "Value"));
        EXPECT_FALSE(capture.contains(LOG_WARNING, "Value"));
        capture.clear();
        EXPECT_EQ(capture.count(), 0u);
    }
    EXPECT_EQ(buffer(), "");
    SDEBUG << "below the level again" << std::endl;
    EXPECT_FALSE(osgLog().checkLevel(LOG_DEBUG));
    EXPECT_EQ(buffer(), "");
}

TEST_F(LogOutput, CaptureWithALevelLeavesTheRestOut)
{
    LogCapture capture(LOG_WARNING);
    SWARNING << "in" << std::endl;
    SNOTICE << "out" << std::endl;
    SINFO << "out" << std::endl;
    EXPECT_EQ(capture.text(), "in\n");
    EXPECT_EQ(buffer(), "");
}

TEST_F(LogOutput, OverlappingCapturesEachRecordEverything)
{
    LogCapture outer;
    FWARNING(("one\n"));
    {
        LogCapture inner;
        FWARNING(("two\n"));
        EXPECT_EQ(inner.text(), "two\n");
    }
    FWARNING(("three\n"));
    EXPECT_EQ(outer.text(), "one\ntwo\nthree\n");
}

TEST_F(LogOutput, CaptureGetsNothingOfWhatWasSentBeforeIt)
{
    osgLog().setHeaderElem(0);
    SWARNING << "before";
    LogCapture capture;
    EXPECT_EQ(capture.count(), 0u);
    EXPECT_EQ(buffer(), "before");
}

TEST_F(LogOutput, TextOfSeveralLinesInOneStatementIsOneMessage)
{
    LogCapture capture;
    SWARNING << "first\nsecond" << std::endl;
    FWARNING(("third\nfourth\n"));
    const std::vector<LogMessage> messages = capture.messages();
    ASSERT_EQ(messages.size(), 2u);
    EXPECT_EQ(messages[0].text, "first\nsecond\n");
    EXPECT_EQ(messages[1].text, "third\nfourth\n");
}

TEST_F(LogOutput, SinkThatLogsDoesNotHang)
{
    struct Talkative : LogSink
    {
        void receive(const LogMessage &message) override
        {
            FWARNING(("about a message\n"));
            text += message.text;
        }
        std::string text;
    } sink;
    osgLog().addSink(&sink);
    FWARNING(("message\n"));
    osgLog().removeSink(&sink);
    EXPECT_EQ(sink.text, "message\n");
}

TEST_F(LogOutput, ThreadsLogWholeMessagesInTheirOwnOrder)
{
    constexpr int numThreads = 4;
    constexpr int numMessages = 200;
    LogCapture capture;
    std::vector<std::thread> threads;
    for(int t = 0; t < numThreads; ++t)
    {
        threads.emplace_back([t]() {
            for(int i = 0; i < numMessages; ++i)
            {
                SNOTICE << "stream " << t << " " << i << std::endl;
                FNOTICE(("printf %d %d\n", t, i));
                osgLog().doHeader(LOG_NOTICE, "OpenSG", "f", 1) << "header " << t << " " << i << std::endl;
            }
            SNOTICE << "end of " << t; // closed by the thread's end
        });
    }
    for(std::thread &thread : threads)
        thread.join();

    std::map<std::string, int> next;
    int ends = 0;
    for(const LogMessage &message : capture.messages())
    {
        std::istringstream words(message.text);
        std::string kind;
        int thread = -1;
        int index = -1;
        if(message.text.compare(0, 7, "end of ") == 0)
        {
            ++ends;
            continue;
        }
        words >> kind >> thread >> index;
        const std::string key = kind + std::to_string(thread);
        ASSERT_EQ(message.text, kind + " " + std::to_string(thread) + " " + std::to_string(index) + "\n");
        ASSERT_EQ(index, next[key]++);
    }
    EXPECT_EQ(ends, numThreads);
    ASSERT_EQ(next.size(), 3u * numThreads);
    for(const auto &entry : next)
        EXPECT_EQ(entry.second, numMessages) << entry.first;
}

TEST_F(LogOutput, CapturesOnSeveralThreadsEachRecordTheirThreadsMessages)
{
    std::vector<std::thread> threads;
    std::vector<UInt32> seen(4, 0);
    for(int t = 0; t < 4; ++t)
    {
        threads.emplace_back([t, &seen]() {
            for(int i = 0; i < 50; ++i)
            {
                LogCapture capture;
                FWARNING(("thread %d\n", t));
                seen[t] += capture.contains(LOG_WARNING, "thread " + std::to_string(t) + "\n");
            }
        });
    }
    for(std::thread &thread : threads)
        thread.join();
    for(const UInt32 count : seen)
        EXPECT_EQ(count, 50u);
}
