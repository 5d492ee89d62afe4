// The base layer as the rest of the library and its hosts use it: the log, the platform
// wrappers, label digits and the hash table.
#include "base/base.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cstdlib>
#include <cstring>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <tuple>
#include <utility>
#include <vector>
#include <dlfcn.h>

namespace {

using testing::internal::CaptureStdout;
using testing::internal::GetCapturedStdout;
using testing::internal::RE;

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
        std::string buffer(20000, '#');
        getLogMsg(buffer.data(), static_cast<int>(buffer.size()));
        return buffer.c_str();
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
// a data source's messages are progress (3). Level 1 shows only errors.
TEST_F(Log, LevelsLetThroughWhatIsAtOrBelowThem)
{
    const std::pair<int, const char*> rows[] = {
        {1, "z0\ne1\n"}, {2, "z0\ne1\nw2\n"}, {3, "z0\ne1\nw2\np3\ndata 3 x\n"}, {-1, ""}};
    for (const auto& [level, passed] : rows) {
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
    for (size_t at = 0; at < log.size(); at += 100)
        EXPECT_EQ(log.substr(at, 100), std::string(99, log[at] == 'a' ? 'a' : 'b') + "\n") << at;
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

// Whole seconds alone would give 0 or 1 for the elapsed time.
TEST(Platform, TimeOfDayInSeconds)
{
    const double before = apiGetTime();
    EXPECT_NEAR(before, double(time(nullptr)), 2.0);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_GE(apiGetTime() - before, 0.019);
}

TEST(Platform, ReadsEveryEntryThenStopsWithoutTouchingTheBuffer)
{
    char pattern[] = "/tmp/korel2d-dir-XXXXXX", buffer[256];
    const std::string dir = mkdtemp(pattern), longest(255, 'n');
    for (const std::string& name : {std::string("alpha.so"), longest})
        std::ofstream(dir + "/" + name).put('x');
    void* handle = apiOpenDir(dir.c_str());
    ASSERT_NE(handle, nullptr);
    std::set<std::string> seen;
    while (apiReadDir(handle, buffer))
        seen.insert(buffer);
    std::filesystem::remove_all(dir);
    EXPECT_EQ(seen, (std::set<std::string>{".", "..", "alpha.so", longest}));
    memset(buffer, '#', sizeof buffer);
    EXPECT_EQ(apiReadDir(handle, buffer), 0);
    EXPECT_EQ(std::string(buffer, sizeof buffer), std::string(sizeof buffer, '#'));
    EXPECT_EQ(apiCloseDir(handle), 1);
    EXPECT_EQ(apiOpenDir("/nonexistent/korel2d"), nullptr);
}

// Every refusal prints the loader's reason, naming what was asked for.
TEST(Platform, LoadsLibrariesAndSymbolsAndPrintsWhyTheLoaderRefused)
{
    void* lib = apiDllOpen("libm.so.6");
    ASSERT_NE(lib, nullptr);
    EXPECT_EQ(apiDllGetSymbol(lib, "cos"), dlsym(lib, "cos"));
    // A loader error left pending by someone else must not fail the next look-up.
    ASSERT_EQ(dlsym(lib, "krdAnotherMissingEntry"), nullptr);
    EXPECT_NE(apiDllGetSymbol(lib, "sin"), nullptr);

    CaptureStdout();
    // dlopen would give the program itself for a null path.
    EXPECT_EQ(std::vector<void*>({apiDllGetSymbol(lib, "krdNoSuchEntryInfo"),
                                  apiDllOpen("/nonexistent/libKrdMissing.so"), apiDllGetSymbol(lib, nullptr),
                                  apiDllOpen(nullptr)}),
              std::vector<void*>(4, nullptr));
    EXPECT_TRUE(RE::FullMatch(GetCapturedStdout(), "apiDllGetSymbol: [^\n]*krdNoSuchEntryInfo[^\n]*\n"
                                                    "apiDllOpen: [^\n]*/nonexistent/libKrdMissing.so[^\n]*\n"
                                                    "apiDllGetSymbol: handle 0x[0-9a-f]+ symbol 0x0\n"
                                                    "apiDllOpen: path = NULL\n"));
    EXPECT_EQ(apiDllClose(lib), 0);
}

using Table = std::unique_ptr<mpiHash, decltype(&mpiHashRemove)>;

// Distinct non-null values to store; the table never dereferences them.
void* tag(uintptr_t i) { return reinterpret_cast<void*>((i + 1) * 16); }

// The size is the first prime above twice the wanted count (999,983 is the last below a
// million, beyond it there is no table); it grows once an insert would pass two thirds, and
// every entry, number or name, is found again after a move. The largest table fills up and
// then refuses further inserts; searching its first thousand entries is enough.
TEST(HashTable, SizeAndGrowthKeepEveryEntry)
{
    const std::tuple<uint32_t, uintptr_t, uint32_t> rows[] = {
        {50, 0, 101}, {10, 0, 23},   {0, 0, 1},     {499992, 0, 0}, {0xFFFFFFFFu, 0, 0}, {0, 2, 3},
        {0, 3, 7},    {50, 67, 101}, {50, 68, 137}, {4, 20, 41},    {499991, 999983, 999983},
    };
    for (const auto& [wanted, inserts, size] : rows) {
        SCOPED_TRACE(std::to_string(wanted) + " wanted, " + std::to_string(inserts) + " inserts");
        Table table(mpiHashCreate(wanted), mpiHashRemove);
        ASSERT_EQ(table == nullptr, size == 0);
        if (!table)
            continue;
        for (uintptr_t i = 0; i < inserts; ++i)
            ASSERT_EQ(i % 2 ? mpiHashInsert(table.get(), 1000 + i, tag(i))
                            : mpiHashInsertAscii(table.get(), ("var" + std::to_string(i)).c_str(), tag(i)), 0);
        EXPECT_EQ(table->size, size);
        EXPECT_EQ(table->count, inserts);
        EXPECT_EQ(mpiHashInsert(table.get(), 7, tag(0)), inserts == size ? -1 : 0) << "one more";
        for (uintptr_t i = 0; i < inserts && i < 1000; ++i)
            EXPECT_EQ(i % 2 ? mpiHashSearch(table.get(), 1000 + i)
                            : mpiHashSearchAscii(table.get(), ("var" + std::to_string(i)).c_str()),
                      tag(i)) << i;
    }
}

// Names are copied and compared exactly, case included; bytes above 127 hash as negative. A null
// value means "not found", so it cannot be stored.
TEST(HashTable, NamesAreExactCopiesHashedAsSignedChars)
{
    Table table(mpiHashCreate(10), mpiHashRemove); // 23 slots
    char name[] = "speed";
    for (const auto& [key, i] : {std::pair<const char*, int>{name, 1}, {"", 2}, {"Level", 3}, {"level", 4}, {"\xe9", 5}})
        ASSERT_EQ(mpiHashInsertAscii(table.get(), key, tag(i)), 0);
    strcpy(name, "other");
    const std::pair<const char*, void*> searches[] = {{"speed", tag(1)}, {"", tag(2)},       {"Level", tag(3)},
                                                      {"level", tag(4)}, {"\xe9", tag(5)},   {"other", nullptr},
                                                      {"Speed", nullptr}};
    for (const auto& [key, value] : searches)
        EXPECT_EQ(mpiHashSearchAscii(table.get(), key), value) << '"' << key << '"';
    // -23 taken as unsigned 32 bits leaves 12 modulo 23 (233 would leave 3).
    EXPECT_STREQ(table->slots[12].name, "\xe9");

    const int results[] = {mpiHashDeleteAscii(table.get(), "LEVEL"), mpiHashDeleteAscii(table.get(), "speed"),
                           mpiHashDeleteAscii(table.get(), "speed"), mpiHashInsertAscii(table.get(), "a", nullptr),
                           mpiHashInsert(table.get(), 1, nullptr)};
    EXPECT_EQ(std::vector<int>(results, results + 5), std::vector<int>({-1, 0, -1, -1, -1}));
    EXPECT_EQ(table->count, 4u);
}

// Deleting leaves a hole: number searches and deletes probe past it, text searches stop there.
TEST(HashTable, KeysAreFoundInProbeOrderAndOnlyTheTextSearchStopsAtHoles)
{
    Table ints(mpiHashCreate(10), mpiHashRemove);
    ASSERT_EQ(mpiHashInsert(ints.get(), 7, tag(1)), 0);
    ASSERT_EQ(mpiHashInsert(ints.get(), 7, tag(2)), 0);
    for (uintptr_t i : {1, 2}) {
        EXPECT_EQ(mpiHashSearch(ints.get(), 7), tag(i));
        EXPECT_EQ(mpiHashDelete(ints.get(), 7), 0);
    }
    EXPECT_EQ(mpiHashDelete(ints.get(), 7), -1);

    // "a" and "x" (97 and 120) share a start slot in 23 slots, as two equal names do.
    for (const char* second : {"x", "a"}) {
        Table names(mpiHashCreate(10), mpiHashRemove);
        ASSERT_EQ(mpiHashInsertAscii(names.get(), "a", tag(1)), 0);
        ASSERT_EQ(mpiHashInsertAscii(names.get(), second, tag(2)), 0);
        ASSERT_EQ(mpiHashDeleteAscii(names.get(), "a"), 0);
        EXPECT_EQ(mpiHashSearchAscii(names.get(), second), nullptr) << second;
        EXPECT_EQ(mpiHashDeleteAscii(names.get(), second), 0) << second;
    }
}

// Clearing keeps the grown size. Under the sanitizer build this also proves that owned values
// are freed exactly once, through deletes, clears and growth.
TEST(HashTable, ClearAndAutoDeleteGiveBackEntries)
{
    Table table(mpiHashCreate(4), mpiHashRemove);
    EXPECT_EQ(mpiHashSetAutoDelete(table.get(), 1), 0);
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(mpiHashInsertAscii(table.get(), ("k" + std::to_string(i)).c_str(), malloc(32)), 0);
    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "k3"), 0);
    EXPECT_EQ(mpiHashClear(table.get()), 0);
    EXPECT_EQ(table->size, 41u);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "k5"), nullptr);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "k5", malloc(8)), 0); // freed with the table

    // Without it, the caller keeps ownership.
    Table plain(mpiHashCreate(4), mpiHashRemove);
    int value = 5;
    ASSERT_EQ(mpiHashInsert(plain.get(), 9, &value), 0);
    EXPECT_EQ(mpiHashDelete(plain.get(), 9), 0);
}

} // namespace
