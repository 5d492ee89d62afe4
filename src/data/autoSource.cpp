// Auto Data (type 1): test signals, so that a view runs and animates with no process behind it.
// Each variable picks a wave form, a frequency and a range; two more forms give the date and the
// time as text. Run computes every wave once per cycle; Get only scales one entry.
#include "data/autoWaves.h"
#include "data/builtinSources.h"
#include "data/valueBuffer.h"

#include <sys/time.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>

namespace {

enum Parameter { kTypePara, kFrequencyPara, kMinPara, kMaxPara, kParaCount };
constexpr int kWaveCount = 12;

enum class Scaling { Centred, Ranged, None };

struct WaveForm {
    const char* name;
    Scaling scaling;
    float defaultMin, defaultMax;
};

const WaveForm kWaves[kWaveCount] = {
    {"SIN", Scaling::Centred, -1, 1},
    {"SIN Increase", Scaling::Centred, -1, 1},
    {"SIN Half Wave", Scaling::Ranged, 0, 1},
    {"SIN Random", Scaling::Centred, -1, 1},
    {"TRIANGLE", Scaling::Ranged, 0, 1},
    {"SAW 1", Scaling::Ranged, 0, 1},
    {"SAW 2", Scaling::Ranged, 0, 1},
    {"RECTANGLE", Scaling::Ranged, 0, 1},
    // Its default range makes -1 + 2r of it.
    {"RANDOM", Scaling::Ranged, -1, 1},
    {"FREQUENCY", Scaling::None, -1, 1},
    {"DATE", Scaling::None, 0, 0},
    {"TIME", Scaling::None, 0, 0},
};

constexpr size_t kClockTextSize = 256;

struct AutoState {
    float table[kAutoWaveRows][kAutoFrequencies];
    char date[kClockTextSize];
    char time[kClockTextSize];
    double start;
};

double wallClockSeconds()
{
    timeval now;
    gettimeofday(&now, nullptr);
    return double(now.tv_sec) + double(now.tv_usec) * 1e-6;
}

void setText(PARA_STRUCT& slot, const char* text)
{
    if (slot.sval && slot.size > 0)
        snprintf(slot.sval, slot.size, "%s", text);
}

void setRange(VARIABLE_STRUCT* variable, float min, float max)
{
    char text[32];
    snprintf(text, sizeof text, "%.1f", double(min));
    setText(variable->para[kMinPara], text);
    snprintf(text, sizeof text, "%.1f", double(max));
    setText(variable->para[kMaxPara], text);
}

bool hasAllParameters(const VARIABLE_STRUCT* variable)
{
    return variable && variable->para && variable->nrPara >= kParaCount;
}

float numberIn(const PARA_STRUCT& slot)
{
    return slot.sval ? float(strtod(slot.sval, nullptr)) : 0.0f;
}

int krdAutoVarInfo(DD_DATA_TYPE_STRUCT* source)
{
    source->init(source, "Auto Data", KRD_TYPE_AUTO, 0);
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_LIST, 0, "TYPE", kWaves[0].name, kWaves[1].name, kWaves[2].name, kWaves[3].name,
                   kWaves[4].name, kWaves[5].name, kWaves[6].name, kWaves[7].name, kWaves[8].name, kWaves[9].name,
                   kWaves[10].name, kWaves[11].name, static_cast<const char*>(nullptr));
    // Three digits each, so the last one has only one behind the point.
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_LIST, 0, "FREQUENCY", "0.01 Hz", "0.02 Hz", "0.05 Hz", "0.10 Hz", "0.20 Hz", "0.50 Hz",
                   "1.00 Hz", "2.00 Hz", "5.00 Hz", "10.0 Hz", static_cast<const char*>(nullptr));
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_TEXT, 0, "MIN");
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_TEXT, 0, "MAX");
    return 0;
}

int krdAutoVarOpen(DD_DATA_TYPE_STRUCT* source)
{
    if (!source)
        return -1;
    free(source->data);
    source->data = calloc(1, sizeof(AutoState));
    return source->data ? 0 : -1;
}

int krdAutoVarClose(DD_DATA_TYPE_STRUCT* source)
{
    if (!source)
        return -1;
    free(source->data);
    source->data = nullptr;
    return 0;
}

// Every start puts all waves back to phase 0.
int krdAutoVarStartView(DD_DATA_TYPE_STRUCT* source)
{
    if (!source || !source->data)
        return -1;
    static_cast<AutoState*>(source->data)->start = wallClockSeconds();
    return 0;
}

// The clock is read anew each cycle, so the waves follow real time at any cycle rate.
int krdAutoVarRun(DD_DATA_TYPE_STRUCT* source)
{
    if (!source || !source->data)
        return -1;
    AutoState& state = *static_cast<AutoState*>(source->data);
    const double now = wallClockSeconds();
    autoWaveTable(now - state.start, float(rand()) * 4.656613e-10f, state.table);

    const time_t seconds = time_t(now);
    tm local;
    if (localtime_r(&seconds, &local)) {
        snprintf(state.date, sizeof state.date, "%02d.%02d.%02d ", local.tm_mday, local.tm_mon + 1,
                 local.tm_year + 1900);
        snprintf(state.time, sizeof state.time, "%02d:%02d:%02d", local.tm_hour, local.tm_min, local.tm_sec);
    }
    return 0;
}

int krdAutoVarGet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    if (!source || !source->data || !hasAllParameters(variable) || !variable->value)
        return 0;
    const AutoState& state = *static_cast<const AutoState*>(source->data);
    const int wave = variable->para[kTypePara].ival;
    const int frequency = variable->para[kFrequencyPara].ival;
    if (wave < 0 || wave >= kWaveCount || frequency < 0 || frequency >= kAutoFrequencies)
        return 0;

    float min = numberIn(variable->para[kMinPara]);
    float max = numberIn(variable->para[kMaxPara]);
    // A range of 0 to 0 stands for the wave's own; writing it back shows it to an editor.
    if (min == 0.0f && max == 0.0f) {
        setRange(variable, kWaves[wave].defaultMin, kWaves[wave].defaultMax);
        min = numberIn(variable->para[kMinPara]);
        max = numberIn(variable->para[kMaxPara]);
    }

    // The texts need the 256-byte buffer of a text variable; a shorter one gets nothing.
    if (wave == kDate || wave == kTime) {
        if (variable->type == KR_VAR_TEXT)
            storeText(variable->value, wave == kDate ? state.date : state.time);
        return 0;
    }
    // Not a signal: the selected frequency itself, in Hz, whatever the range.
    if (wave == kFrequency) {
        writeValue(variable->value, KR_VAR_FLOAT, kAutoFrequencyHz[frequency]);
        return 0;
    }
    const float v = state.table[wave][frequency];
    const float value = kWaves[wave].scaling == Scaling::Centred ? (max - min) / 2 * v + (min + max) / 2
                                                                 : (max - min) * v + min;
    writeValue(variable->value, KR_VAR_FLOAT, value);
    return 0;
}

int krdAutoVarNewVariable(VARIABLE_STRUCT* variable)
{
    if (!hasAllParameters(variable))
        return 0;
    variable->para[kTypePara].ival = 0;
    variable->para[kFrequencyPara].ival = 0;
    setRange(variable, -1, 1);
    variable->type = KR_VAR_FLOAT;
    return 0;
}

// A new wave form brings its range, and the date and time make the variable a text.
int krdAutoVarCallbackVar(int index, int value, void*, VARIABLE_STRUCT* variable)
{
    if (index != kTypePara || !hasAllParameters(variable))
        return 0;
    if (value == kDate || value == kTime) {
        variable->type = KR_VAR_TEXT;
        setRange(variable, 0, 0);
    } else if (value == kSinHalf || (value >= kTriangle && value <= kRectangle)) {
        variable->type = KR_VAR_FLOAT;
        setRange(variable, 0, 1);
    } else {
        variable->type = KR_VAR_FLOAT;
        setRange(variable, -1, 1);
    }
    return 0;
}

} // namespace

void autoSourceEntries(DD_DATA_TYPE_STRUCT* source)
{
    quietEntries(source);
    source->info = krdAutoVarInfo;
    source->open = krdAutoVarOpen;
    source->close = krdAutoVarClose;
    source->run = krdAutoVarRun;
    source->get = krdAutoVarGet;
    source->startView = krdAutoVarStartView;
    source->newVariable = krdAutoVarNewVariable;
    source->callbackVar = krdAutoVarCallbackVar;
}
