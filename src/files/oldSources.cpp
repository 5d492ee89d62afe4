// The data-source section of revisions 1.00 to 1.10. Those files named a source by an old code
// and kept its settings in fixed slots; each becomes the present-day source of that kind, with
// the parameters the source reads today.
#include "KorelDataSource.h"
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "files/Reader.h"
#include "files/viewFileReaders.h"

#include <charconv>
#include <cstdio>

namespace {

constexpr int kFirstWithSettingJ = 107;
constexpr int kFirstWithDiscardedSetting = 102;
constexpr int kFirstWithWaves = 101;

// The old codes, in the order of their settings table.
enum OldCode {
    kOldSharedMemory = 0,
    kOldSharedMemoryByKey = 1,
    kOldPluginWithSettings = 2,
    kOldPluginWithText = 3,
    kOldConstant = 4,
    kOldAuto = 5,
    kOldPluginWithTextOnly = 6,
    kOldInternal = 7,
    kOldCodes
};

// Type numbers that plug-ins took over from old codes 2, 3 and 6.
enum { kPluginType50 = 50, kPluginType51 = 51, kPluginType52 = 52, kPluginType54 = 54 };

struct Shape {
    int id, nrData, nrVar;
};

// What each old code became, in files before 1.07 and from 1.07 on.
const Shape kEarly[kOldCodes] = {
    {KRD_TYPE_SHARED_MEMORY, 4, 1}, {KRD_TYPE_UDP, 3, 1},     {kPluginType50, 5, 1}, {kPluginType51, 3, 1},
    {KRD_TYPE_CONSTANT, 0, 1},      {KRD_TYPE_AUTO, 0, 2},    {kPluginType52, 3, 1}, {KRD_TYPE_INTERNAL, 0, 0},
};
const Shape kLate[kOldCodes] = {
    {KRD_TYPE_SHARED_MEMORY, 4, 1}, {KRD_TYPE_UDP, 3, 1},     {kPluginType51, 5, 2}, {kPluginType54, 3, 2},
    {KRD_TYPE_CONSTANT, 0, 1},      {KRD_TYPE_AUTO, 0, 2},    {kPluginType52, 2, 2}, {KRD_TYPE_INTERNAL, 0, 0},
};

// The wave forms of the Auto source were renumbered; others stay as they are.
int newWave(int32_t old)
{
    static const int waves[12] = {0, 1, 4, 5, 6, 7, 10, 11, 2, 3, 8, 9};
    return old >= 0 && old < 12 ? waves[old] : old;
}

// The settings of one old source as stored.
struct Settings {
    int32_t code, a, b, e, f, g, h, i, j;
    char t[128];
    // The old flag said big-endian by 0; the parameter now says "swap" by 1.
    int32_t swap() const { return e == 0 ? 1 : 0; }
};

constexpr size_t kSettingsBytes = 8 * 4 + 128;
constexpr size_t kOldVariableBytes = 4 + 64 + 4;
constexpr size_t kWaveBytes = 3 * 4;

void setText(PARA_STRUCT* slot, const char* text)
{
    snprintf(slot->sval, slot->size, "%s", text);
}

void setHex(PARA_STRUCT* slot, int32_t value)
{
    snprintf(slot->sval, slot->size, "0x%x", unsigned(value));
}

void setDecimal(PARA_STRUCT* slot, int32_t value)
{
    snprintf(slot->sval, slot->size, "%d", value);
}

// As "%f" prints it, whatever the host's locale.
void setFixed(PARA_STRUCT* slot, float value)
{
    char text[64];
    const auto end = std::to_chars(text, text + sizeof text - 1, double(value), std::chars_format::fixed, 6);
    *(end.ec == std::errc() ? end.ptr : text) = '\0';
    setText(slot, text);
}

void setDataParameters(const Settings& s, int revision, PARA_STRUCT* p)
{
    const bool late = revision >= kFirstWithSettingJ;
    switch (s.code) {
    case kOldSharedMemory:
        setHex(&p[0], s.a);
        p[1].ival = s.swap();
        p[2].ival = late ? s.j : 0;
        break;
    case kOldSharedMemoryByKey:
        setHex(&p[0], s.i);
        setDecimal(&p[1], s.b);
        p[2].ival = s.swap();
        break;
    case kOldPluginWithSettings:
        setText(&p[0], s.t);
        p[1].ival = s.f, p[2].ival = s.g, p[3].ival = s.h;
        p[4].ival = s.swap();
        break;
    case kOldPluginWithTextOnly:
        if (late) {
            setText(&p[0], s.t);
            p[1].ival = s.swap();
            break;
        }
        [[fallthrough]];
    case kOldPluginWithText:
        setText(&p[0], s.t);
        p[1].ival = s.f;
        p[2].ival = s.swap();
        break;
    default: break;
    }
}

// One old variable of a source of `code`; null when the file ends before it.
VARIABLE_STRUCT* readVariable(Reader& in, int32_t code, int revision, int32_t parameterCount)
{
    const bool waves = revision >= kFirstWithWaves;
    if (!in.roomFor(kOldVariableBytes + (waves ? kWaveBytes : 0)))
        return nullptr;
    VARIABLE_STRUCT* v = createVariable(slotsFor(parameterCount));
    if (!v) {
        in.stream->abandon();
        return nullptr;
    }
    v->nrPara = parameterCount;
    v->type = in.integer();
    in.fixed(v->name);
    const int32_t offset = in.integer();
    const float c = waves ? in.real() : 0.0f;
    const int32_t wave = waves ? in.integer() : 0, frequency = waves ? in.integer() : 0;
    PARA_STRUCT* p = v->para;
    switch (code) {
    case kOldSharedMemory:
    case kOldSharedMemoryByKey: setDecimal(&p[0], offset); break;
    case kOldPluginWithSettings:
    case kOldPluginWithText:
    case kOldPluginWithTextOnly:
        setDecimal(&p[0], offset);
        if (revision >= kFirstWithSettingJ)
            p[1].ival = 1;
        break;
    case kOldConstant: setFixed(&p[0], c); break;
    case kOldAuto:
        p[0].ival = newWave(wave);
        p[1].ival = frequency;
        break;
    default: break;
    }
    return v;
}

Settings readSettings(Reader& in, int revision)
{
    Settings s;
    s.code = in.integer();
    s.a = in.integer();
    s.b = in.integer();
    s.e = in.integer();
    s.f = in.integer();
    s.g = in.integer();
    s.h = in.integer();
    s.i = in.integer();
    const int32_t ninth = revision >= kFirstWithDiscardedSetting ? in.integer() : 0;
    s.j = revision >= kFirstWithSettingJ ? ninth : 0;
    in.fixed(s.t);
    return s;
}

DD_DATA_TYPE_STRUCT* readSource(Reader& in, int revision)
{
    const Settings s = readSettings(in, revision);
    const bool known = s.code >= 0 && s.code < kOldCodes;
    const Shape shape = known ? (revision >= kFirstWithSettingJ ? kLate : kEarly)[s.code] : Shape{0, 0, 0};
    DD_DATA_TYPE_STRUCT* source = createDataType(slotsFor(shape.nrData));
    if (!source) {
        in.stream->abandon();
        return nullptr;
    }
    source->id = shape.id;
    source->nrData = shape.nrData;
    source->nrVar = shape.nrVar;
    setDataParameters(s, revision, source->para);
    const int32_t count = in.integer();
    TailAppender<VARIABLE_STRUCT> variables(&source->variables);
    for (int32_t k = 0; k < count; ++k) {
        VARIABLE_STRUCT* v = readVariable(in, known ? s.code : -1, revision, shape.nrVar);
        if (!v)
            break;
        variables.add(v);
    }
    return source;
}

} // namespace

int dataLoadOld(KStream* stream, DD_DATA_TYPE_STRUCT** head, int revision)
{
    Reader in{stream};
    const int32_t count = in.integer();
    TailAppender<DD_DATA_TYPE_STRUCT> sources(head);
    for (int32_t k = 0; k < count && in.roomFor(kSettingsBytes); ++k) {
        DD_DATA_TYPE_STRUCT* source = readSource(in, revision);
        if (!source)
            break;
        sources.add(source);
    }
    return 0;
}
