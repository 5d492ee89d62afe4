// SHM DATA (type 3): variables at byte offsets of a System V shared-memory segment that another
// process owns. Nothing here creates a segment or locks it. The owner may describe the segment
// in a directory at its start, from which the variable list can be rebuilt.
#include "base/base.h"
#include "data/builtinSources.h"
#include "data/byteImage.h"

#include <sys/ipc.h>
#include <sys/shm.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>
#include <new>

namespace {

enum DataParameter { kKeyPara, kEndianPara, kAutoLoadPara, kLoadButton };
enum AutoLoad { kAutoLoadOff, kAutoLoadOn };

// The directory: an entry count in the host's order at byte 60, then entries of 64 bytes from
// byte 64 on: a name of at most 51 characters and its terminator, a type code in the host's
// order at 52, the value itself at 56.
constexpr size_t kCountOffset = 60;
constexpr size_t kEntrySize = 64;
constexpr size_t kFirstEntry = 64;
constexpr size_t kNameSize = 52;
constexpr size_t kCodeOffset = 52;
constexpr size_t kValueOffset = 56;

// Directory type codes 0 to 25 and the variable type each gives; others give a float.
constexpr int kDirectoryTypes[] = {
    KR_VAR_INT32, KR_VAR_INT32, KR_VAR_FLOAT,  KR_VAR_INT64,  KR_VAR_UINT64, KR_VAR_INT64,  KR_VAR_INT16,
    KR_VAR_UINT16, KR_VAR_INT16, KR_VAR_INT8,  KR_VAR_UINT8,  KR_VAR_INT8,   KR_VAR_INT16,  KR_VAR_UINT16,
    KR_VAR_INT16, KR_VAR_INT8,  KR_VAR_UINT8,  KR_VAR_INT8,   KR_VAR_INT8,   KR_VAR_UINT8,  KR_VAR_INT8,
    KR_VAR_INT32, KR_VAR_INT32, KR_VAR_INT8,   KR_VAR_INT8,   KR_VAR_INT8};

struct Attachment {
    uint8_t* address; // null when not attached
    int id;
    size_t size;
};

struct ShmState {
    Attachment segment;
    int byteOrder;
    OffsetWarnings warnings{"SHM DATA", {}};
};

ShmState* stateOf(DD_DATA_TYPE_STRUCT* source)
{
    return static_cast<ShmState*>(source->data);
}

// The system's reason after `what`, then the detail line, on standard error.
__attribute__((format(printf, 2, 3))) void reportFailure(const char* what, const char* detail, ...)
{
    perror(what);
    va_list args;
    va_start(args, detail);
    vfprintf(stderr, detail, args);
    va_end(args);
}

// Attaches the segment of the source's key; a null address on failure, with the reason on
// standard error.
Attachment attach(const DD_DATA_TYPE_STRUCT* source, int flags)
{
    Attachment segment{nullptr, -1, 0};
    unsigned key = 0;
    sscanf(dataParaText(source, kKeyPara), "%x", &key);
    segment.id = shmget(key_t(key), 0, 0666);
    if (segment.id == -1) {
        reportFailure("krdShmVarOpenShm: shmget", "key = 0x%x\n", key);
        return segment;
    }
    void* address = shmat(segment.id, nullptr, flags);
    if (address == reinterpret_cast<void*>(-1)) {
        reportFailure("krdShmVarOpenShm: shmat", "key = 0x%x\n", key);
        return segment;
    }
    shmid_ds status;
    if (shmctl(segment.id, IPC_STAT, &status) == -1) {
        reportFailure("krdShmVarOpenShm: shmctl 1", "id = %d\n", segment.id);
        shmdt(address);
        return segment;
    }
    segment.address = static_cast<uint8_t*>(address);
    segment.size = status.shm_segsz;
    return segment;
}

void detach(Attachment& segment)
{
    if (segment.address && shmdt(segment.address) == -1)
        reportFailure("krdShmVarCloseShm: shmdt", "id = %d\n", segment.id);
    segment.address = nullptr;
}

template <class T> T loadHostOrder(const uint8_t* at)
{
    T value;
    memcpy(&value, at, sizeof value);
    return value;
}

// Replaces the variable list by the segment's directory. Only entries wholly inside the
// segment count, whatever the count claims; a segment without room for the count has none.
void rebuildVariables(DD_DATA_TYPE_STRUCT* source)
{
    Attachment segment = attach(source, SHM_RDONLY);
    if (!segment.address)
        return;
    source->deleteAllVariables(source);
    const int32_t count = segment.size >= kFirstEntry ? loadHostOrder<int32_t>(segment.address + kCountOffset) : 0;
    const size_t room = segment.size >= kFirstEntry ? (segment.size - kFirstEntry) / kEntrySize : 0;
    const size_t entries = count > 0 ? std::min(size_t(count), room) : 0;
    for (size_t i = 0; i < entries; ++i) {
        const uint8_t* entry = segment.address + kFirstEntry + i * kEntrySize;
        char name[kNameSize];
        memcpy(name, entry, kNameSize - 1);
        name[kNameSize - 1] = '\0';
        const uint32_t code = loadHostOrder<uint32_t>(entry + kCodeOffset);
        const int type = code < std::size(kDirectoryTypes) ? kDirectoryTypes[code] : KR_VAR_FLOAT;
        char offset[16];
        snprintf(offset, sizeof offset, "%zu", kFirstEntry + i * kEntrySize + kValueOffset);
        source->addVariable(source, name, type, offset);
    }
    detach(segment);
}

ByteImage imageOf(const ShmState& state)
{
    return ByteImage{state.segment.address, state.segment.size, state.byteOrder != kHostByteOrder};
}

int krdShmVarInfo(DD_DATA_TYPE_STRUCT* source)
{
    source->init(source, "SHM DATA", KRD_TYPE_SHARED_MEMORY, 0);
    source->option(source, KRD_SCOPE_DATA, KRD_FIELD_TEXT, 0, "SHM KEY (Hex)");
    source->option(source, KRD_SCOPE_DATA, KRD_FIELD_LIST, 0, "ENDIAN", "Big Endian", "Little Endian",
                   static_cast<const char*>(nullptr));
    source->option(source, KRD_SCOPE_DATA, KRD_FIELD_LIST, 0, "AUTO-LOAD", "Auto Load KSHM off", "Auto Load KSHM on",
                   static_cast<const char*>(nullptr));
    source->option(source, KRD_SCOPE_DATA, KRD_FIELD_BUTTON, 0, "LOAD KSHM", "Load");
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_TEXT, 0, "OFFSET");
    return 0;
}

int krdShmVarOpen(DD_DATA_TYPE_STRUCT* source)
{
    auto* state = new (std::nothrow) ShmState;
    if (!state) {
        logMsg(1, "krdShmVarOpen: out of memory\n");
        return -1;
    }
    source->data = state;
    state->segment = attach(source, 0);
    state->byteOrder = dataParaItem(source, kEndianPara);
    return state->segment.address ? 0 : -1;
}

int krdShmVarClose(DD_DATA_TYPE_STRUCT* source)
{
    if (ShmState* state = stateOf(source)) {
        detach(state->segment);
        delete state;
        source->data = nullptr;
    }
    return 0;
}

int krdShmVarGet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    ShmState* state = stateOf(source);
    if (state && state->segment.address)
        readFromImage(imageOf(*state), variable, state->warnings);
    return 0;
}

int krdShmVarSet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    ShmState* state = stateOf(source);
    if (state && state->segment.address && variable->changed)
        writeToImage(imageOf(*state), variable, state->warnings);
    return 0;
}

int krdShmVarStartView(DD_DATA_TYPE_STRUCT* source)
{
    if (dataParaItem(source, kAutoLoadPara) == kAutoLoadOn)
        rebuildVariables(source);
    return 0;
}

int krdShmVarNewData(DD_DATA_TYPE_STRUCT* source)
{
    setDataParaText(source, kKeyPara, "0x0");
    return 0;
}

int krdShmVarNewVariable(VARIABLE_STRUCT* variable)
{
    setVariableParaText(variable, 0, "0");
    return 0;
}

int krdShmVarCallbackData(int index, int, void*, DD_DATA_TYPE_STRUCT* source)
{
    if (index != kLoadButton)
        return 0;
    // A running view holds the variables in its bindings and its data cycle.
    if (source->data) {
        logMsg(2, "SHM DATA: the variable list is loaded while the view is stopped\n");
        return -1;
    }
    rebuildVariables(source);
    return 0;
}

} // namespace

void sharedMemorySourceEntries(DD_DATA_TYPE_STRUCT* source)
{
    quietEntries(source);
    source->info = krdShmVarInfo;
    source->open = krdShmVarOpen;
    source->close = krdShmVarClose;
    source->get = krdShmVarGet;
    source->set = krdShmVarSet;
    source->startView = krdShmVarStartView;
    source->newData = krdShmVarNewData;
    source->newVariable = krdShmVarNewVariable;
    source->callbackData = krdShmVarCallbackData;
}
