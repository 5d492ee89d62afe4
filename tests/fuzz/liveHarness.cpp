// What another process puts before a view: any bytes as a shared-memory segment, its directory
// read when the source rebuilds its variables, or as a datagram. The first byte picks the case;
// the rest is the segment or the datagram. A variable of each type sits at the offset that the
// bytes hold at 4 * type (the first 60 bytes of a segment are its owner's), each with a default,
// so that a start writes as well as reads.
#include "fuzzView.h"

#include "Datagram.h"
#include "Korel2D.h"
#include "KorelDataSource.h"
#include "KshmSegment.h"
#include "ViewBuilder.h"
#include "actions/actions.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <string>
#include <vector>

namespace {

enum Flags : uint8_t { kSegment = 1, kAutoLoad = 2, kLittleEndian = 4, kHugeSize = 8 };
constexpr int kPort = 47391;
constexpr size_t kLargestDatagram = 65507;
constexpr int kCycles = 2;

korelgen::UdpSender* peer = nullptr;

std::vector<korelgen::VariableFields> variablesAt(const uint8_t* image, size_t size)
{
    std::vector<korelgen::VariableFields> variables;
    for (int type = KR_VAR_FLOAT; type <= KR_VAR_TEXT; ++type) {
        int32_t offset = type;
        if (size_t(type + 1) * sizeof offset <= size)
            memcpy(&offset, image + type * sizeof offset, sizeof offset);
        variables.push_back({type, "v" + std::to_string(type), "-7", {{0, std::to_string(offset)}}});
    }
    return variables;
}

korelgen::SourceFields sourceFor(uint8_t flags, const uint8_t* image, size_t size, const std::string& key)
{
    const int endian = flags & kLittleEndian ? 1 : 0;
    if (flags & kSegment)
        return {KRD_TYPE_SHARED_MEMORY, {{0, key}, {endian, ""}, {flags & kAutoLoad ? 1 : 0, ""}, {0, ""}}, 1,
                variablesAt(image, size)};
    const std::string sizeText = flags & kHugeSize ? "99999999999" : std::to_string(size);
    return {KRD_TYPE_UDP, {{0, std::to_string(kPort)}, {0, sizeText}, {endian, ""}}, 1, variablesAt(image, size)};
}

void expectZero(int answer, const char* call)
{
    if (answer != 0) {
        std::fprintf(stderr, "fuzz: %s answered %d\n", call, answer);
        std::abort();
    }
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***)
{
    k2dfuzz::prepareProcess();
    peer = new korelgen::UdpSender(kPort);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (size == 0)
        return 0;
    const uint8_t flags = data[0];
    const uint8_t* image = data + 1;
    const size_t imageSize = size - 1;
    // Made and removed in each run; an empty image gives no segment, which the source survives too.
    std::optional<korelgen::KshmSegment> segment;
    if ((flags & kSegment) && imageSize) {
        segment.emplace(korelgen::uniqueKshmKey(0), imageSize);
        if (segment->ok())
            memcpy(segment->bytes(), image, imageSize);
    }
    char key[16];
    snprintf(key, sizeof key, "0x%x", unsigned(korelgen::uniqueKshmKey(0)));

    korelgen::ViewBuilder b;
    b.page(0, 0, 100, 100, 0, 0, 0);
    const std::vector<uint8_t> bytes = b.dataSection({sourceFor(flags, image, imageSize, key)}).bytes();
    VIEW_STRUCT* view = krViewLoadData(bytes.data(), bytes.size());
    if (!view)
        std::abort();
    expectZero(krViewStart(view), "krViewStart");
    if (!(flags & kSegment) && imageSize <= kLargestDatagram)
        peer->send(image, imageSize);
    for (int i = 0; i < kCycles; ++i)
        fillDP(view->dataTypes);
    expectZero(krViewStop(view), "krViewStop");
    krViewFree(view);
    return 0;
}
