#include "KshmSegment.h"

#include <sys/ipc.h>
#include <sys/shm.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>

namespace korelgen {

KshmSegment::KshmSegment(key_t key, size_t bytes) : key_(key)
{
    // shmget itself takes an existing segment of the key when it is at least this large.
    id_ = shmget(key, bytes, IPC_CREAT | 0666);
    if (id_ < 0)
        return;
    void* address = shmat(id_, nullptr, 0);
    if (address == reinterpret_cast<void*>(-1))
        return;
    shmid_ds status{};
    // A segment taken over may be larger than asked for.
    size_t size = shmctl(id_, IPC_STAT, &status) == 0 ? size_t(status.shm_segsz) : bytes;
    bytes_ = static_cast<uint8_t*>(address);
    size_ = size;
}

KshmSegment::~KshmSegment()
{
    release();
}

void KshmSegment::release()
{
    if (bytes_)
        shmdt(bytes_);
    if (id_ >= 0)
        shmctl(id_, IPC_RMID, nullptr);
    bytes_ = nullptr;
    size_ = 0;
    id_ = -1;
}

bool KshmSegment::writeDirectory(const std::vector<KshmEntry>& entries)
{
    if (!bytes_ || (entries.size() + 1) * kKshmEntrySize > size_)
        return false;
    const int32_t count = int32_t(entries.size());
    std::memcpy(bytes_ + kKshmCountOffset, &count, sizeof count);
    for (size_t i = 0; i < entries.size(); ++i) {
        uint8_t* entry = bytes_ + (i + 1) * kKshmEntrySize;
        std::memset(entry, 0, kKshmValueOffset);
        std::memcpy(entry, entries[i].name.data(), std::min(entries[i].name.size(), kKshmNameBytes - 1));
        std::memcpy(entry + kKshmNameBytes, &entries[i].code, sizeof entries[i].code);
    }
    return true;
}

bool KshmSegment::put(size_t offset, const void* value, size_t width, bool bigEndian)
{
    if (!bytes_ || offset > size_ || width > size_ - offset)
        return false;
    storeOrdered(bytes_ + offset, value, width, bigEndian);
    return true;
}

void storeOrdered(uint8_t* to, const void* value, size_t width, bool bigEndian)
{
    const uint16_t probe = 1;
    const bool hostBig = *reinterpret_cast<const uint8_t*>(&probe) == 0;
    const uint8_t* from = static_cast<const uint8_t*>(value);
    for (size_t i = 0; i < width; ++i)
        to[i] = bigEndian == hostBig ? from[i] : from[width - 1 - i];
}

int KshmSegment::attachCount() const
{
    shmid_ds status{};
    if (id_ < 0 || shmctl(id_, IPC_STAT, &status) != 0)
        return -1;
    return int(status.shm_nattch);
}

key_t uniqueKshmKey(int n)
{
    // The pid fills bits 8..29 (pids stay below 2^22) and n the low byte; bit 30 keeps the key
    // off IPC_PRIVATE, which is 0.
    return key_t(0x40000000u | (uint32_t(getpid()) & 0x3fffffu) << 8 | (uint32_t(n) & 0xffu));
}

} // namespace korelgen
