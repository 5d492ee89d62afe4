// UDP Socket Data (type 4): variables at byte offsets of the last datagram that arrived on a
// port. The socket is non-blocking and drained once per data cycle, so no thread waits for it;
// nothing is ever sent.
#include "base/base.h"
#include "data/builtinSources.h"
#include "data/byteImage.h"

#include <netinet/in.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <new>

namespace {

enum DataParameter { kPortPara, kSizePara, kEndianPara };
constexpr long kLargestSize = 65536;
constexpr long kLargestPort = 65535;
// A peer sending faster than the view reads can't hold the data cycle: the rest waits for the
// next one.
constexpr int kDatagramsPerCycle = 1000;

struct UdpState {
    int socket = -1;
    uint8_t* buffer = nullptr;
    size_t size = 0;
    int byteOrder = kBigEndian;
    OffsetWarnings warnings{"UDP Socket Data", {}};
};

UdpState* stateOf(DD_DATA_TYPE_STRUCT* source)
{
    return static_cast<UdpState*>(source->data);
}

// No number or a negative one is 0, more than the largest datagram the largest.
size_t bufferSize(const char* text)
{
    char* end;
    errno = 0;
    const long asked = strtol(text, &end, 10);
    const bool number = end != text && errno != ERANGE;
    const long size = asked < 0 ? 0 : asked > kLargestSize ? kLargestSize : asked;
    if (!number || size != asked)
        logMsg(2, "UDP Socket Data: SIZE \"%s\" taken as %ld\n", text, size);
    return size_t(size);
}

// The bound non-blocking socket, or -1 with the reason on standard error.
int openSocket(const char* portText)
{
    char* end;
    const long port = strtol(portText, &end, 10);
    if (end == portText || port < 0 || port > kLargestPort) {
        fprintf(stderr, "UDP Socket Data: PORT \"%s\" is no port\nopening socket\n", portText);
        return -1;
    }
    const int receiver = socket(AF_INET, SOCK_DGRAM, 0);
    if (receiver < 0) {
        perror("Opening receive socket");
        fputs("opening socket\n", stderr);
        return -1;
    }
    const int on = 1;
    setsockopt(receiver, SOL_SOCKET, SO_REUSEADDR, &on, sizeof on);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_ANY);
    address.sin_port = htons(uint16_t(port));
    if (bind(receiver, reinterpret_cast<const sockaddr*>(&address), sizeof address) < 0) {
        perror("bind socket");
        fputs("opening socket\n", stderr);
        close(receiver);
        return -1;
    }
    int nonBlocking = 1;
    ioctl(receiver, FIONBIO, &nonBlocking);
    return receiver;
}

ByteImage imageOf(const UdpState& state)
{
    return ByteImage{state.buffer, state.size, state.byteOrder != kHostByteOrder};
}

int krdSocketVarInfo(DD_DATA_TYPE_STRUCT* source)
{
    source->init(source, "UDP Socket Data", KRD_TYPE_UDP, 0);
    source->option(source, KRD_SCOPE_DATA, KRD_FIELD_TEXT, 0, "PORT");
    source->option(source, KRD_SCOPE_DATA, KRD_FIELD_TEXT, 0, "SIZE");
    source->option(source, KRD_SCOPE_DATA, KRD_FIELD_LIST, 0, "ENDIAN", "Big Endian", "Little Endian",
                   static_cast<const char*>(nullptr));
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_TEXT, 0, "OFFSET");
    return 0;
}

int krdSocketVarOpen(DD_DATA_TYPE_STRUCT* source)
{
    auto* state = new (std::nothrow) UdpState;
    if (!state) {
        fputs("socketVar: error malloc\n", stderr);
        return -1;
    }
    source->data = state;
    state->byteOrder = dataParaItem(source, kEndianPara);
    const size_t size = bufferSize(dataParaText(source, kSizePara));
    state->socket = openSocket(dataParaText(source, kPortPara));
    if (state->socket < 0)
        return -1;
    // One byte at least, so that a SIZE of 0 still has a buffer that every offset misses.
    state->buffer = static_cast<uint8_t*>(calloc(size ? size : 1, 1));
    if (!state->buffer) {
        fputs("socketVar: error malloc\n", stderr);
        return -1;
    }
    state->size = size;
    return 0;
}

int krdSocketVarClose(DD_DATA_TYPE_STRUCT* source)
{
    UdpState* state = stateOf(source);
    if (!state)
        return 0;
    // Descriptor 0 too: with standard input closed a socket may well get it.
    if (state->socket >= 0)
        close(state->socket);
    free(state->buffer);
    delete state;
    source->data = nullptr;
    return 0;
}

int krdSocketVarRun(DD_DATA_TYPE_STRUCT* source)
{
    UdpState* state = stateOf(source);
    if (!state || !state->buffer)
        return 0;
    for (int i = 0; i < kDatagramsPerCycle && recv(state->socket, state->buffer, state->size, 0) > 0; ++i) {
    }
    return 0;
}

int krdSocketVarGet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    if (UdpState* state = stateOf(source); state && state->buffer)
        readFromImage(imageOf(*state), variable, state->warnings);
    return 0;
}

int krdSocketVarSet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    if (UdpState* state = stateOf(source); state && state->buffer)
        writeToImage(imageOf(*state), variable, state->warnings);
    return 0;
}

int krdSocketVarNewData(DD_DATA_TYPE_STRUCT* source)
{
    setDataParaText(source, kPortPara, "0");
    setDataParaText(source, kSizePara, "0");
    if (source->para && source->nrData > kEndianPara)
        source->para[kEndianPara].ival = kBigEndian;
    return 0;
}

int krdSocketVarNewVariable(VARIABLE_STRUCT* variable)
{
    setVariableParaText(variable, 0, "0");
    variable->type = KR_VAR_FLOAT;
    return 0;
}

} // namespace

void udpSourceEntries(DD_DATA_TYPE_STRUCT* source)
{
    quietEntries(source);
    source->info = krdSocketVarInfo;
    source->open = krdSocketVarOpen;
    source->close = krdSocketVarClose;
    source->run = krdSocketVarRun;
    source->get = krdSocketVarGet;
    source->set = krdSocketVarSet;
    source->newData = krdSocketVarNewData;
    source->newVariable = krdSocketVarNewVariable;
}
