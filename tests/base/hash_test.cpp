#include "base/base.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>

namespace {

struct TableDeleter {
    void operator()(mpiHash* table) const { mpiHashRemove(table); }
};
using Table = std::unique_ptr<mpiHash, TableDeleter>;

// Distinct non-null values to store; the table never dereferences them.
void* tag(uintptr_t i)
{
    return reinterpret_cast<void*>((i + 1) * 16);
}

std::string nameOf(uintptr_t i)
{
    return "var" + std::to_string(i);
}

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
        Table table(mpiHashCreate(wanted));
        if (size == 0) {
            EXPECT_EQ(table, nullptr);
            continue;
        }
        ASSERT_NE(table, nullptr);
        for (uintptr_t i = 0; i < inserts; ++i)
            ASSERT_EQ(i % 2 ? mpiHashInsert(table.get(), 1000 + i, tag(i))
                            : mpiHashInsertAscii(table.get(), nameOf(i).c_str(), tag(i)), 0);
        EXPECT_EQ(table->size, size);
        EXPECT_EQ(table->count, inserts);
        EXPECT_EQ(mpiHashInsert(table.get(), 7, tag(0)), inserts == size ? -1 : 0) << "one more";
        for (uintptr_t i = 0; i < inserts && i < 1000; ++i)
            EXPECT_EQ(i % 2 ? mpiHashSearch(table.get(), 1000 + i) : mpiHashSearchAscii(table.get(), nameOf(i).c_str()),
                      tag(i)) << i;
    }
}

// Names are copied and compared exactly, case included; bytes above 127 hash as negative.
TEST(HashTable, NamesAreExactCopiesHashedAsSignedChars)
{
    Table table(mpiHashCreate(10)); // 23 slots
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

    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "LEVEL"), -1);
    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "speed"), 0);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "speed"), nullptr);
    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "speed"), -1);
    EXPECT_EQ(table->count, 4u);
}

// Deleting leaves a hole: number searches and deletes probe past it, text searches stop there.
TEST(HashTable, KeysAreFoundInProbeOrderAndOnlyTheTextSearchStopsAtHoles)
{
    Table ints(mpiHashCreate(10));
    ASSERT_EQ(mpiHashInsert(ints.get(), 7, tag(1)), 0);
    ASSERT_EQ(mpiHashInsert(ints.get(), 7, tag(2)), 0);
    EXPECT_EQ(mpiHashSearch(ints.get(), 7), tag(1));
    EXPECT_EQ(mpiHashDelete(ints.get(), 7), 0);
    EXPECT_EQ(mpiHashSearch(ints.get(), 7), tag(2));
    EXPECT_EQ(mpiHashDelete(ints.get(), 7), 0);
    EXPECT_EQ(mpiHashDelete(ints.get(), 7), -1);

    // "a" and "x" (97 and 120) share a start slot in 23 slots, as two equal names do.
    for (const char* second : {"x", "a"}) {
        Table names(mpiHashCreate(10));
        ASSERT_EQ(mpiHashInsertAscii(names.get(), "a", tag(1)), 0);
        ASSERT_EQ(mpiHashInsertAscii(names.get(), second, tag(2)), 0);
        ASSERT_EQ(mpiHashDeleteAscii(names.get(), "a"), 0);
        EXPECT_EQ(mpiHashSearchAscii(names.get(), second), nullptr) << second;
        EXPECT_EQ(mpiHashDeleteAscii(names.get(), second), 0) << second;
        EXPECT_EQ(names->count, 0u);
    }
}

TEST(HashTable, NullValuesAndNullArgumentsAreRefused)
{
    Table table(mpiHashCreate(10));
    EXPECT_EQ(mpiHashDelete(table.get(), 0), -1); // key 0 meets an empty slot, nothing to delete
    EXPECT_EQ(mpiHashInsert(table.get(), 1, nullptr), -1);
    EXPECT_EQ(mpiHashInsertAscii(table.get(), "a", nullptr), -1);
    EXPECT_EQ(mpiHashInsertAscii(table.get(), nullptr, tag(1)), -1);
    EXPECT_EQ(table->count, 0u);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), nullptr), nullptr);
    EXPECT_EQ(mpiHashInsert(nullptr, 1, tag(1)), -1);
    EXPECT_EQ(mpiHashSearch(nullptr, 1), nullptr);
    EXPECT_EQ(mpiHashRemove(nullptr), -1);
}

// Clearing keeps the grown size. Under the sanitizer build this also proves that owned values
// are freed exactly once, through deletes, clears and growth.
TEST(HashTable, ClearAndAutoDeleteGiveBackEntries)
{
    mpiHash* table = mpiHashCreate(4);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(mpiHashSetAutoDelete(table, 1), 0);
    for (int i = 0; i < 20; ++i)
        ASSERT_EQ(mpiHashInsertAscii(table, ("k" + std::to_string(i)).c_str(), malloc(32)), 0);
    EXPECT_EQ(mpiHashDeleteAscii(table, "k3"), 0);
    EXPECT_EQ(mpiHashClear(table), 0);
    EXPECT_EQ(table->count, 0u);
    EXPECT_EQ(table->size, 41u);
    EXPECT_EQ(mpiHashSearchAscii(table, "k5"), nullptr);
    ASSERT_EQ(mpiHashInsertAscii(table, "k5", malloc(8)), 0);
    EXPECT_NE(mpiHashSearchAscii(table, "k5"), nullptr);
    EXPECT_EQ(mpiHashRemove(table), 0);

    // Without it, the caller keeps ownership.
    Table plain(mpiHashCreate(4));
    std::unique_ptr<int> value(new int(5));
    ASSERT_EQ(mpiHashInsert(plain.get(), 9, value.get()), 0);
    EXPECT_EQ(mpiHashDelete(plain.get(), 9), 0);
    EXPECT_EQ(*value, 5);
}

// (trunc(latitude) + 90) * 1000 + trunc(longitude) + 180.
TEST(HashTable, PositionKeys)
{
    const std::tuple<double, double, uint32_t> cases[] = {{10.7, -20.9, 100160}, {-45.5, 100.2, 45280}, {-90, -180, 0}};
    for (const auto& [latitude, longitude, key] : cases)
        EXPECT_EQ(mpiHashCalcKey(latitude, longitude), key) << latitude << ", " << longitude;
    EXPECT_EQ(mpiHashCalcAsciiKey(), 0u);
}

} // namespace
