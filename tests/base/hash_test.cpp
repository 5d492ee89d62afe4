#include "base/base.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>
#include <tuple>
#include <utility>

namespace {

struct TableDeleter {
    void operator()(mpiHash* table) const { mpiHashRemove(table); }
};
using Table = std::unique_ptr<mpiHash, TableDeleter>;

Table makeTable(uint32_t n)
{
    Table table(mpiHashCreate(n));
    EXPECT_NE(table, nullptr);
    return table;
}

// Distinct non-null values to store; the table never dereferences them.
void* tag(uintptr_t i)
{
    return reinterpret_cast<void*>((i + 1) * 16);
}

int slotOf(const mpiHash* table, const char* name)
{
    for (uint32_t i = 0; i < table->size; ++i)
        if (table->slots[i].name && strcmp(table->slots[i].name, name) == 0)
            return static_cast<int>(i);
    return -1;
}

// 499,991 wants 999,982 slots: the last prime below a million. Beyond that there is none.
TEST(HashTable, SizeIsFirstPrimeAboveTwiceTheWantedCountOrNoTable)
{
    const std::pair<uint32_t, uint32_t> cases[] = {{50, 101},    {10, 23},     {0, 1},         {499991, 999983},
                                                   {499992, 0}, {500000, 0}, {0xFFFFFFFFu, 0}};
    for (const auto& [wanted, size] : cases) {
        Table table(mpiHashCreate(wanted));
        if (size == 0) {
            EXPECT_EQ(table, nullptr) << wanted;
            continue;
        }
        ASSERT_NE(table, nullptr) << wanted;
        EXPECT_EQ(table->size, size) << wanted;
        EXPECT_EQ(table->count, 0u) << wanted;
    }
}

TEST(HashTable, GrowsAtTheSixtyEighthInsertAndKeepsEveryEntry)
{
    Table ints = makeTable(50);
    Table names = makeTable(50);
    for (uintptr_t i = 0; i < 67; ++i) {
        ASSERT_EQ(mpiHashInsert(ints.get(), 1000 + i, tag(i)), 0);
        ASSERT_EQ(mpiHashInsertAscii(names.get(), ("var" + std::to_string(i)).c_str(), tag(i)), 0);
    }
    EXPECT_EQ(ints->size, 101u);
    EXPECT_EQ(names->size, 101u);
    ASSERT_EQ(mpiHashInsert(ints.get(), 1067, tag(67)), 0);
    ASSERT_EQ(mpiHashInsertAscii(names.get(), "var67", tag(67)), 0);
    EXPECT_EQ(ints->size, 137u);
    EXPECT_EQ(names->size, 137u);
    EXPECT_EQ(ints->count, 68u);
    EXPECT_EQ(names->count, 68u);
    for (uintptr_t i = 0; i < 68; ++i) {
        EXPECT_EQ(mpiHashSearch(ints.get(), 1000 + i), tag(i)) << i;
        EXPECT_EQ(mpiHashSearchAscii(names.get(), ("var" + std::to_string(i)).c_str()), tag(i)) << i;
    }
}

TEST(HashTable, SmallTablesGrowOnlyAboveTwoThirds)
{
    Table table = makeTable(0);
    // The second entry stays in 3 slots: 2 * 1.5 is not above 3.
    const std::pair<const char*, uint32_t> inserts[] = {{"x", 3}, {"y", 3}, {"z", 7}};
    for (size_t i = 0; i < 3; ++i) {
        ASSERT_EQ(mpiHashInsertAscii(table.get(), inserts[i].first, tag(i)), 0);
        EXPECT_EQ(table->size, inserts[i].second) << inserts[i].first;
    }
    for (size_t i = 0; i < 3; ++i)
        EXPECT_EQ(mpiHashSearchAscii(table.get(), inserts[i].first), tag(i)) << inserts[i].first;
}

// Names are copied and compared exactly, case included.
TEST(HashTable, AsciiInsertSearchDeleteByExactName)
{
    Table table = makeTable(10);
    char name[] = "speed";
    ASSERT_EQ(mpiHashInsertAscii(table.get(), name, tag(1)), 0);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "", tag(2)), 0);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "Level", tag(3)), 0);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "level", tag(4)), 0);
    strcpy(name, "other");
    const std::pair<const char*, void*> searches[] = {{"speed", tag(1)}, {"", tag(2)},       {"Level", tag(3)},
                                                      {"level", tag(4)}, {"other", nullptr}, {"Speed", nullptr},
                                                      {"SPEED", nullptr}};
    for (const auto& [key, value] : searches)
        EXPECT_EQ(mpiHashSearchAscii(table.get(), key), value) << '"' << key << '"';

    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "LEVEL"), -1);
    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "speed"), 0);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "speed"), nullptr);
    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "speed"), -1);
    EXPECT_EQ(table->count, 3u);
}

TEST(HashTable, TextHashWidensBytesAsSignedChars)
{
    Table table = makeTable(10); // 23 slots
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "a", tag(1)), 0);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "\xe9", tag(2)), 0);
    EXPECT_EQ(slotOf(table.get(), "a"), 97 % 23);
    // -23 taken as unsigned 32 bits is 4294967273, which leaves 12 modulo 23 (233 would leave 3).
    EXPECT_EQ(slotOf(table.get(), "\xe9"), 12);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "\xe9"), tag(2));
}

// Deleting leaves a hole: number searches and deletes probe past it, text searches stop there.
TEST(HashTable, KeysAreFoundInProbeOrderAndOnlyTheTextSearchStopsAtHoles)
{
    Table ints = makeTable(10);
    ASSERT_EQ(mpiHashInsert(ints.get(), 7, tag(1)), 0);
    ASSERT_EQ(mpiHashInsert(ints.get(), 7, tag(2)), 0);
    EXPECT_EQ(ints->count, 2u);
    EXPECT_EQ(mpiHashSearch(ints.get(), 7), tag(1));
    EXPECT_EQ(mpiHashDelete(ints.get(), 7), 0);
    EXPECT_EQ(mpiHashSearch(ints.get(), 7), tag(2));
    EXPECT_EQ(mpiHashDelete(ints.get(), 7), 0);
    EXPECT_EQ(mpiHashDelete(ints.get(), 7), -1);

    // "a" and "x" (97 and 120) share a start slot in 23 slots, as two equal names do.
    for (const char* second : {"x", "a"}) {
        Table names = makeTable(10);
        ASSERT_EQ(mpiHashInsertAscii(names.get(), "a", tag(1)), 0);
        ASSERT_EQ(mpiHashInsertAscii(names.get(), second, tag(2)), 0);
        EXPECT_EQ(mpiHashSearchAscii(names.get(), "a"), tag(1)) << second;
        ASSERT_EQ(mpiHashDeleteAscii(names.get(), "a"), 0);
        EXPECT_EQ(mpiHashSearchAscii(names.get(), second), nullptr) << second;
        EXPECT_EQ(mpiHashDeleteAscii(names.get(), second), 0) << second;
        EXPECT_EQ(names->count, 0u);
    }
}

TEST(HashTable, NullValuesAndNullArgumentsAreRefused)
{
    Table table = makeTable(10);
    EXPECT_EQ(mpiHashDelete(table.get(), 0), -1); // key 0 meets an empty slot, nothing to delete
    EXPECT_EQ(mpiHashInsert(table.get(), 1, nullptr), -1);
    EXPECT_EQ(mpiHashInsertAscii(table.get(), "a", nullptr), -1);
    EXPECT_EQ(mpiHashInsertAscii(table.get(), nullptr, tag(1)), -1);
    EXPECT_EQ(table->count, 0u);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), nullptr), nullptr);
    EXPECT_EQ(mpiHashInsert(nullptr, 1, tag(1)), -1);
    EXPECT_EQ(mpiHashSearch(nullptr, 1), nullptr);
    EXPECT_EQ(mpiHashSearchAscii(nullptr, "a"), nullptr);
    EXPECT_EQ(mpiHashRemove(nullptr), -1);
}

TEST(HashTable, FullLargestTableRefusesFurtherInserts)
{
    Table table = makeTable(499991);
    const uint32_t size = table->size;
    for (uint32_t key = 1; key <= size; ++key)
        ASSERT_EQ(mpiHashInsert(table.get(), key, tag(key)), 0) << key;
    EXPECT_EQ(table->size, size);
    EXPECT_EQ(table->count, size);
    EXPECT_EQ(mpiHashInsert(table.get(), size + 1, tag(0)), -1);
    EXPECT_EQ(mpiHashSearch(table.get(), size), tag(size));
}

TEST(HashTable, ClearEmptiesButKeepsTheSize)
{
    Table table = makeTable(50);
    for (uintptr_t i = 0; i < 80; ++i)
        ASSERT_EQ(mpiHashInsertAscii(table.get(), ("n" + std::to_string(i)).c_str(), tag(i)), 0);
    const uint32_t grown = table->size;
    EXPECT_EQ(grown, 137u);
    EXPECT_EQ(mpiHashClear(table.get()), 0);
    EXPECT_EQ(table->count, 0u);
    EXPECT_EQ(table->size, grown);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "n5"), nullptr);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "n5", tag(99)), 0);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "n5"), tag(99));
}

// Run under the sanitizer build, this also proves values are freed exactly once.
TEST(HashTable, AutoDeleteGivesBackValues)
{
    mpiHash* table = mpiHashCreate(4);
    ASSERT_NE(table, nullptr);
    EXPECT_EQ(mpiHashSetAutoDelete(table, 1), 0);
    for (int i = 0; i < 20; ++i) // enough to grow twice while owning the values
        ASSERT_EQ(mpiHashInsertAscii(table, ("k" + std::to_string(i)).c_str(), malloc(32)), 0);
    EXPECT_EQ(mpiHashDeleteAscii(table, "k3"), 0);
    EXPECT_EQ(mpiHashDeleteAscii(table, "k3"), -1);
    EXPECT_EQ(mpiHashClear(table), 0);
    ASSERT_EQ(mpiHashInsertAscii(table, "again", malloc(8)), 0);
    EXPECT_EQ(mpiHashRemove(table), 0);

    // Without it, the caller keeps ownership.
    Table plain = makeTable(4);
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
