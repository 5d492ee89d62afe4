// A System V shared memory segment owned by this process, laid out with a KSHM directory that
// names its values, as the shared-memory source of a view reads it: for the feeder tool, the
// tests and the benchmarks.
#pragma once

#include <sys/types.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace korelgen {

// The directory's layout. The count and the type codes are in the host's order; the values
// in the order their reader is told.
constexpr size_t kKshmCountOffset = 60;
constexpr size_t kKshmEntrySize = 64;
constexpr size_t kKshmNameBytes = 52; // the name with its terminator
constexpr size_t kKshmValueOffset = 56; // of the value within its entry, 8 bytes of room

// KSHM type codes of an entry.
constexpr uint32_t kKshmInt32 = 0;
constexpr uint32_t kKshmFloat = 2;

struct KshmEntry {
    std::string name; // cut to kKshmNameBytes - 1 characters
    uint32_t code;    // the KSHM type code: kKshmFloat, kKshmInt32, ...
};

class KshmSegment {
public:
    // Creates the segment of `key` with `bytes` bytes, or takes the one of that key if it is as
    // large, and attaches it. ok() tells whether both worked.
    KshmSegment(key_t key, size_t bytes);
    // Detaches and removes it.
    ~KshmSegment();
    KshmSegment(const KshmSegment&) = delete;
    KshmSegment& operator=(const KshmSegment&) = delete;

    bool ok() const { return bytes_ != nullptr; }
    int id() const { return id_; }
    key_t key() const { return key_; }
    uint8_t* bytes() const { return bytes_; }
    size_t size() const { return size_; }

    // The count at kKshmCountOffset and an entry per value; false if they don't fit.
    bool writeDirectory(const std::vector<KshmEntry>& entries);
    // Where the directory puts the value of entry `entry`, from 0.
    static size_t valueOffset(int entry) { return size_t(entry + 1) * kKshmEntrySize + kKshmValueOffset; }
    // Stores the `width` bytes of a host value at `offset`, most significant first when
    // `bigEndian`; false if they don't fit.
    bool put(size_t offset, const void* value, size_t width, bool bigEndian);
    // The processes attached now, this one included; -1 if the system can't tell.
    int attachCount() const;
    // Detaches and removes the segment before the destructor would.
    void release();

private:
    key_t key_;
    int id_ = -1;
    uint8_t* bytes_ = nullptr;
    size_t size_ = 0;
};

// Stores the `width` bytes of a host value at `to`, most significant first when `bigEndian`:
// a value as a segment or a datagram carries it.
void storeOrdered(uint8_t* to, const void* value, size_t width, bool bigEndian);

// A key for a segment of a test or benchmark, different for each process and each `n`, so that
// programs running side by side don't meet in one segment. Never IPC_PRIVATE.
key_t uniqueKshmKey(int n);

} // namespace korelgen
