// Open-addressing hash table with linear probing and prime sizes, keyed either by an
// unsigned integer or by a zero-terminated name. A null value marks an empty slot.

#include "base/base.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <new>

namespace {

constexpr uint32_t kSieveLimit = 1000000;

// Every number below the limit that is not a multiple of a prime up to 1000, in rising
// order: 0, 1, then the primes up to 999,983. Made by the first creation, never freed.
uint32_t* primes = nullptr;
uint32_t primeCount = 0;

bool makePrimes()
{
    bool* crossed = new (std::nothrow) bool[kSieveLimit]();
    if (!crossed)
        return false;
    for (uint32_t p = 2; p <= 1000; ++p)
        if (!crossed[p])
            for (uint32_t m = 2 * p; m < kSieveLimit; m += p)
                crossed[m] = true;
    uint32_t count = 0;
    for (uint32_t i = 0; i < kSieveLimit; ++i)
        count += !crossed[i];
    uint32_t* table = new (std::nothrow) uint32_t[count];
    if (table) {
        uint32_t k = 0;
        for (uint32_t i = 0; i < kSieveLimit; ++i)
            if (!crossed[i])
                table[k++] = i;
        primes = table;
        primeCount = count;
    }
    delete[] crossed;
    return table != nullptr;
}

// First entry of the prime table strictly above `wanted`; 0 if there is none.
uint32_t sizeAbove(uint64_t wanted)
{
    if (wanted >= primes[primeCount - 1])
        return 0;
    return *std::upper_bound(primes, primes + primeCount, static_cast<uint32_t>(wanted));
}

uint32_t textHash(const char* name, uint32_t size)
{
    uint32_t h = 0;
    // Bytes above 127 count as negative: the table layout depends on the signed widening.
    for (const signed char* c = reinterpret_cast<const signed char*>(name); *c; ++c)
        h = (static_cast<uint32_t>(static_cast<int32_t>(*c)) + 64u * h) % size;
    return h;
}

uint32_t startSlot(const mpiHashSlot& entry, uint32_t size)
{
    return entry.name ? textHash(entry.name, size) : entry.key % size;
}

uint32_t nextSlot(uint32_t i, uint32_t size)
{
    return i + 1 == size ? 0 : i + 1;
}

// Moves every entry into a new slot array of `size` slots. A failed allocation keeps the
// old table: inserts then go on until it is full.
void resize(mpiHash* table, uint32_t size)
{
    auto* slots = static_cast<mpiHashSlot*>(calloc(size_t(size) + 1, sizeof(mpiHashSlot)));
    if (!slots)
        return;
    uint32_t count = 0;
    for (uint32_t i = 0; i < table->size; ++i) {
        const mpiHashSlot& old = table->slots[i];
        if (!old.value)
            continue;
        uint32_t j = startSlot(old, size);
        while (slots[j].value)
            j = nextSlot(j, size);
        slots[j] = old; // the name's copy moves along with its slot
        ++count;
    }
    free(table->slots);
    table->slots = slots;
    table->size = size;
    table->count = count;
}

// Keeps the table at most two thirds full. False when no free slot is left, which can
// only happen once the table has reached the largest size and filled up.
bool makeRoom(mpiHash* table)
{
    if ((table->count + 1.0) * 1.5 > table->size) {
        uint32_t size = sizeAbove(2 * (uint64_t(table->count) + 1));
        if (size)
            resize(table, size);
    }
    return table->count < table->size;
}

void store(mpiHash* table, uint32_t start, uint32_t key, char* name, void* value)
{
    uint32_t i = start;
    while (table->slots[i].value)
        i = nextSlot(i, table->size);
    table->slots[i] = {key, name, value};
    ++table->count;
}

void emptySlot(mpiHash* table, mpiHashSlot& slot)
{
    free(slot.name);
    if (table->autoDelete)
        free(slot.value);
    slot = {0, nullptr, nullptr};
}

// Delete probes the whole table from the start slot, not stopping at holes.
template <typename Match>
int deleteFirst(mpiHash* table, uint32_t start, Match match)
{
    uint32_t i = start;
    for (uint32_t n = 0; n < table->size; ++n, i = nextSlot(i, table->size)) {
        mpiHashSlot& slot = table->slots[i];
        if (!match(slot))
            continue;
        // An integer key 0 can meet an empty slot first, which holds nothing to delete.
        if (!slot.value)
            return -1;
        emptySlot(table, slot);
        --table->count;
        return 0;
    }
    return -1;
}

} // namespace

extern "C" {

mpiHash* mpiHashCreate(uint32_t n)
{
    if (!primes && !makePrimes())
        return nullptr;
    uint32_t size = sizeAbove(2 * uint64_t(n));
    if (!size)
        return nullptr;
    auto* table = static_cast<mpiHash*>(calloc(1, sizeof(mpiHash)));
    if (!table)
        return nullptr;
    table->slots = static_cast<mpiHashSlot*>(calloc(size_t(size) + 1, sizeof(mpiHashSlot)));
    if (!table->slots) {
        free(table);
        return nullptr;
    }
    table->size = size;
    return table;
}

int mpiHashSetAutoDelete(mpiHash* table, int on)
{
    if (!table)
        return -1;
    table->autoDelete = on != 0;
    return 0;
}

// A null value would read as an empty slot, so it is refused rather than stored.
int mpiHashInsert(mpiHash* table, uint32_t key, void* value)
{
    if (!table || !value || !makeRoom(table))
        return -1;
    store(table, key % table->size, key, nullptr, value);
    return 0;
}

void* mpiHashSearch(mpiHash* table, uint32_t key)
{
    if (!table)
        return nullptr;
    uint32_t i = key % table->size;
    for (uint32_t n = 0; n < table->size; ++n, i = nextSlot(i, table->size))
        if (table->slots[i].key == key)
            return table->slots[i].value;
    return nullptr;
}

int mpiHashDelete(mpiHash* table, uint32_t key)
{
    if (!table)
        return -1;
    return deleteFirst(table, key % table->size, [key](const mpiHashSlot& s) { return s.key == key; });
}

int mpiHashInsertAscii(mpiHash* table, const char* name, void* value)
{
    if (!table || !name || !value || !makeRoom(table))
        return -1;
    char* copy = strdup(name);
    if (!copy)
        return -1;
    store(table, textHash(name, table->size), 0, copy, value);
    return 0;
}

void* mpiHashSearchAscii(mpiHash* table, const char* name)
{
    if (!table || !name)
        return nullptr;
    uint32_t i = textHash(name, table->size);
    for (uint32_t n = 0; n < table->size; ++n, i = nextSlot(i, table->size)) {
        const mpiHashSlot& slot = table->slots[i];
        if (slot.name && strcmp(slot.name, name) == 0)
            return slot.value;
        if (!slot.value)
            return nullptr;
    }
    return nullptr;
}

int mpiHashDeleteAscii(mpiHash* table, const char* name)
{
    if (!table || !name)
        return -1;
    return deleteFirst(table, textHash(name, table->size),
                       [name](const mpiHashSlot& s) { return s.name && strcmp(s.name, name) == 0; });
}

int mpiHashClear(mpiHash* table)
{
    if (!table)
        return -1;
    for (uint32_t i = 0; i < table->size; ++i)
        emptySlot(table, table->slots[i]);
    table->count = 0;
    return 0;
}

int mpiHashRemove(mpiHash* table)
{
    if (!table)
        return -1;
    mpiHashClear(table);
    free(table->slots);
    free(table);
    return 0;
}

// A key for a position in whole degrees: latitude -90..90, longitude -180..180.
uint32_t mpiHashCalcKey(double a, double b)
{
    auto lat = static_cast<uint32_t>(static_cast<int64_t>(a));
    auto lon = static_cast<uint32_t>(static_cast<int64_t>(b));
    return (lat + 90u) * 1000u + lon + 180u;
}

uint32_t mpiHashCalcAsciiKey(void)
{
    return 0;
}

} // extern "C"
