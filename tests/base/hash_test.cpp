#include "Korel2D.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <string>

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

TEST(HashTable, SizeIsFirstPrimeAboveTwiceTheWantedCount)
{
    EXPECT_EQ(makeTable(50)->size, 101u);
    EXPECT_EQ(makeTable(10)->size, 23u);
    EXPECT_EQ(makeTable(0)->size, 1u);
    Table largest = makeTable(499991); // 999,982 wanted: the last prime below a million
    EXPECT_EQ(largest->size, 999983u);
    EXPECT_EQ(largest->count, 0u);
    EXPECT_EQ(largest->autoDelete, 0u);
}

TEST(HashTable, CreateFailsWhenNoPrimeIsLargeEnough)
{
    EXPECT_EQ(mpiHashCreate(499992), nullptr);
    EXPECT_EQ(mpiHashCreate(500000), nullptr);
    EXPECT_EQ(mpiHashCreate(0xFFFFFFFFu), nullptr);
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
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "x", tag(1)), 0);
    EXPECT_EQ(table->size, 3u);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "y", tag(2)), 0); // 2 * 1.5 is not above 3
    EXPECT_EQ(table->size, 3u);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "z", tag(3)), 0);
    EXPECT_EQ(table->size, 7u);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "x"), tag(1));
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "y"), tag(2));
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "z"), tag(3));
}

TEST(HashTable, AsciiInsertSearchDelete)
{
    Table table = makeTable(10);
    char name[] = "speed";
    ASSERT_EQ(mpiHashInsertAscii(table.get(), name, tag(1)), 0);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "", tag(2)), 0);
    strcpy(name, "other"); // the table keeps its own copy of the name
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "speed"), tag(1));
    EXPECT_EQ(mpiHashSearchAscii(table.get(), ""), tag(2));
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "other"), nullptr);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "Speed"), nullptr);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "SPEED"), nullptr);

    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "speed"), 0);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "speed"), nullptr);
    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "speed"), -1);
    EXPECT_EQ(table->count, 1u);
}

TEST(HashTable, NamesDifferingInCaseAreDifferentKeys)
{
    Table table = makeTable(10);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "Level", tag(1)), 0);
    ASSERT_EQ(mpiHashInsertAscii(table.get(), "level", tag(2)), 0);
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "Level"), tag(1));
    EXPECT_EQ(mpiHashSearchAscii(table.get(), "level"), tag(2));
    EXPECT_EQ(mpiHashDeleteAscii(table.get(), "LEVEL"), -1);
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

TEST(HashTable, DuplicateKeysAreFoundInProbeOrder)
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

    Table names = makeTable(10);
    ASSERT_EQ(mpiHashInsertAscii(names.get(), "v", tag(1)), 0);
    ASSERT_EQ(mpiHashInsertAscii(names.get(), "v", tag(2)), 0);
    EXPECT_EQ(mpiHashSearchAscii(names.get(), "v"), tag(1));
    EXPECT_EQ(mpiHashDeleteAscii(names.get(), "v"), 0);
    // The first entry's slot is now a hole in front of the second, which the text search stops at.
    EXPECT_EQ(mpiHashSearchAscii(names.get(), "v"), nullptr);
    EXPECT_EQ(mpiHashDeleteAscii(names.get(), "v"), 0);
    EXPECT_EQ(names->count, 0u);
}

TEST(HashTable, DeleteLeavesHolesThatOnlyTheTextSearchStopsAt)
{
    // 5 and 28 share a start slot in 23 slots, as do "a" and "x" (97 and 120).
    Table ints = makeTable(10);
    ASSERT_EQ(mpiHashInsert(ints.get(), 5, tag(1)), 0);
    ASSERT_EQ(mpiHashInsert(ints.get(), 28, tag(2)), 0);
    ASSERT_EQ(mpiHashDelete(ints.get(), 5), 0);
    EXPECT_EQ(mpiHashSearch(ints.get(), 28), tag(2));

    Table names = makeTable(10);
    ASSERT_EQ(mpiHashInsertAscii(names.get(), "a", tag(1)), 0);
    ASSERT_EQ(mpiHashInsertAscii(names.get(), "x", tag(2)), 0);
    ASSERT_EQ(mpiHashDeleteAscii(names.get(), "a"), 0);
    EXPECT_EQ(mpiHashSearchAscii(names.get(), "x"), nullptr);
    EXPECT_EQ(mpiHashDeleteAscii(names.get(), "x"), 0); // delete probes past the hole
    EXPECT_EQ(names->count, 0u);
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
    EXPECT_EQ(table->autoDelete, 1u);
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

TEST(HashTable, PositionKeys)
{
    EXPECT_EQ(mpiHashCalcKey(10.7, -20.9), 100160u); // (10 + 90) * 1000 + (-20) + 180
    EXPECT_EQ(mpiHashCalcKey(-45.5, 100.2), 45280u);
    EXPECT_EQ(mpiHashCalcKey(-90.0, -180.0), 0u);
    EXPECT_EQ(mpiHashCalcAsciiKey(), 0u);
}

} // namespace
