#include "base/base.h"

#include <gtest/gtest.h>

#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;

// The log is one per process: every test starts from the default level and an empty log.
class Log : public testing::Test {
protected:
    void SetUp() override
    {
        setLogLevel(1);
        getLogMsg(nullptr, 0);
    }

    static std::string fetch()
    {
        std::vector<char> buffer(20000, '#');
        getLogMsg(buffer.data(), static_cast<int>(buffer.size()));
        return buffer.data();
    }

    // Logs `text` at level 1 and returns what reached standard output.
    static std::string printed(const std::string& text)
    {
        CaptureStdout();
        logMsg(1, "%s", text.c_str());
        return GetCapturedStdout();
    }
};

// A message passes at or below the set level, to standard output and the memory log alike;
// a data source's messages are progress (3). The default, 1, shows only errors.
TEST_F(Log, LevelsLetThroughWhatIsAtOrBelowThem)
{
    const std::pair<int, const char*> rows[] = {
        {1, "z0\ne1\n"}, {2, "z0\ne1\nw2\n"}, {3, "z0\ne1\nw2\np3\ndata 3 x\n"}, {-1, ""}};
    for (const auto& [level, passed] : rows) {
        if (level != 1) // the first row is the default
            setLogLevel(level);
        CaptureStdout();
        logMsg(0, "z0\n");
        logMsg(1, "e%d\n", 1);
        logMsg(2, "w%d\n", 2);
        logMsg(3, "p%s\n", "3");
        logMsgData("data %d %s\n", 3, "x");
        EXPECT_EQ(GetCapturedStdout(), passed) << level;
        EXPECT_EQ(fetch(), passed) << level;
    }
}

TEST_F(Log, MemoryLogHoldsUpTo16383CharactersAndDropsWholeMessagesBeyond)
{
    for (int i = 0; i < 16; ++i)
        printed(std::string(1000, 'a' + i));
    // Too long for what is left: dropped whole from the log, yet printed in full.
    const std::string tooLong(400, 'X');
    EXPECT_EQ(printed(tooLong), tooLong);
    printed(std::string(383, 'Y')); // exactly fills the log
    printed("c");                   // one more no longer fits
    const std::string log = fetch();
    ASSERT_EQ(log.size(), 16383u);
    EXPECT_EQ(log.substr(15000, 1000), std::string(1000, 'p'));
    EXPECT_EQ(log.substr(16000), std::string(383, 'Y'));
    EXPECT_EQ(fetch(), ""); // fetching empties it
}

// A fetch cuts to the destination and empties the log: the rest is lost. A message is cut to
// 1023 characters.
TEST_F(Log, FetchCutsToTheDestinationAndEmptiesTheLogAndLongMessagesAreCut)
{
    for (int size : {5, 1}) {
        printed("0123456789\n");
        char small[7] = "######";
        EXPECT_EQ(getLogMsg(small, size), 0);
        EXPECT_EQ(std::string(small), std::string("0123").substr(0, size - 1)) << size;
        EXPECT_EQ(small[size], '#') << size; // nothing past the destination
        EXPECT_EQ(fetch(), "") << size;
    }
    const std::string text(2000, 'm');
    EXPECT_EQ(printed(text), text.substr(0, 1023));
    EXPECT_EQ(fetch(), text.substr(0, 1023));
}

// Two threads logging at once: the log keeps only whole messages and never runs past its end.
TEST_F(Log, ConcurrentWritersStayInsideTheLog)
{
    CaptureStdout();
    auto writer = [](char c) {
        const std::string text(99, c);
        for (int i = 0; i < 1000; ++i)
            logMsg(1, "%s\n", text.c_str());
    };
    std::thread first(writer, 'a');
    std::thread second(writer, 'b');
    first.join();
    second.join();
    EXPECT_EQ(GetCapturedStdout().size(), 200000u);

    const std::string log = fetch();
    ASSERT_EQ(log.size(), 16300u); // 163 messages of 100 fit, a 164th would not
    for (size_t at = 0; at < log.size(); at += 100) {
        const std::string message = log.substr(at, 100);
        EXPECT_TRUE(message == std::string(99, 'a') + "\n" || message == std::string(99, 'b') + "\n") << at;
    }
}

TEST(LabelDigits, DigitsBehindAndBeforeThePoint)
{
    const std::pair<double, int> behind[] = {{0.0, 3}, {0.5, 1},   {-0.5, 1}, {0.01, 3},
                                             {0.25, 1}, {1.0, 1}, {2.0, 0},  {100.0, 0}};
    for (const auto& [step, digits] : behind)
        EXPECT_EQ(getDots(step), digits) << "step " << step;
    const std::tuple<double, double, int> before[] = {{0, 99, 2},     {0, 100, 3}, {-250, 10, 3}, {1000, -1000, 4},
                                                      {0.5, 0, 1},    {0, 0, 1},   {9.9, 5, 1}};
    for (const auto& [low, high, digits] : before)
        EXPECT_EQ(getPre(low, high), digits) << "range " << low << " to " << high;
}

} // namespace
