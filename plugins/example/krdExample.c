/*
 * A sample data-source plug-in: what a third party writes to feed a view.
 *
 * It builds against KorelDataSource.h alone and links nothing of the library; every service
 * comes through the source record. Each variable says by its parameter GIVES what it shows:
 * the number of data cycles since Open, the value the view last wrote, or the name of the
 * thread that calls Get.
 *
 * Variants come from this one file through compile definitions:
 *   KRD_STEM                 the Name in krd<Name>Info ... (default Example)
 *   EXAMPLE_TYPE             type number (default 100)
 *   EXAMPLE_VERSION          what krdVersion returns (default KRD_INTERFACE_VERSION)
 *   EXAMPLE_NO_VERSION       no krdVersion
 *   EXAMPLE_NO_INFO          no Info
 *   EXAMPLE_DATA_PARAMETERS  number of data parameters (default 2)
 *   EXAMPLE_GLOBALS          variables live in exported globals that the library copies
 */
#define _GNU_SOURCE /* pthread_getname_np */

#include <KorelDataSource.h>

#include <errno.h>
#include <limits.h>
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <time.h>

#ifndef KRD_STEM
#define KRD_STEM Example
#endif
#ifndef EXAMPLE_TYPE
#define EXAMPLE_TYPE 100
#endif
#ifndef EXAMPLE_VERSION
#define EXAMPLE_VERSION KRD_INTERFACE_VERSION
#endif
#ifndef EXAMPLE_DATA_PARAMETERS
#define EXAMPLE_DATA_PARAMETERS 2
#endif

/* Exported even where a build hides symbols by default: the library finds these by name. */
#define KRD_EXPORT __attribute__((visibility("default")))

#define KRD_PASTE_(a, b, c) a##b##c
#define KRD_PASTE(a, b, c) KRD_PASTE_(a, b, c)
#define KRD_ENTRY(name) KRD_PASTE(krd, KRD_STEM, name)

/* What the items of GIVES stand for. */
enum { GIVES_RUNS = 0, GIVES_LAST_SET = 1, GIVES_THREAD = 2 };

enum { TEXT_BYTES = 256 };

typedef struct ExampleState {
    long runs;         /* data cycles since Open */
    double lastSet;    /* the value of the latest Set */
    int blockMs;       /* how long each Run sleeps: a slow device, for tests of the data cycle */
    long postRuns;
    long startViews;
} ExampleState;

#ifdef EXAMPLE_GLOBALS
/* Copied to and from the view's variables of the same names around each data cycle. */
KRD_EXPORT float exampleGlobalFloat;
KRD_EXPORT int exampleGlobalCount;
KRD_EXPORT char exampleGlobalText[TEXT_BYTES];
#endif

/* Non-finite values and values beyond the target type become 0 or the nearest end: a plain
 * cast of those to an integer is undefined. */
static double clampValue(double x, double low, double high)
{
    if (x != x)
        return 0.0;
    if (x < low)
        return low;
    if (x > high)
        return high;
    return x;
}

/* Writes x into the variable's buffer in the form its type code asks for. */
static void storeValue(VARIABLE_STRUCT* variable, double x)
{
    void* buffer = variable ? variable->value : NULL;
    double c;
    if (!buffer)
        return;
    switch (variable->type) {
    case KR_VAR_FLOAT: {
        float v;
        c = clampValue(x, -3.402823466e38, 3.402823466e38);
        v = (float)c;
        memcpy(buffer, &v, sizeof v);
        break;
    }
    case KR_VAR_DOUBLE: memcpy(buffer, &x, sizeof x); break;
#define STORE_CLAMPED(type, low, high) \
    {                                  \
        type v;                        \
        c = clampValue(x, low, high);  \
        v = (type)c;                   \
        memcpy(buffer, &v, sizeof v);  \
        break;                         \
    }
    case KR_VAR_INT8: STORE_CLAMPED(int8_t, -128.0, 127.0)
    case KR_VAR_UINT8: STORE_CLAMPED(uint8_t, 0.0, 255.0)
    case KR_VAR_INT16: STORE_CLAMPED(int16_t, -32768.0, 32767.0)
    case KR_VAR_UINT16: STORE_CLAMPED(uint16_t, 0.0, 65535.0)
    case KR_VAR_INT32: STORE_CLAMPED(int32_t, -2147483648.0, 2147483647.0)
    case KR_VAR_UINT32: STORE_CLAMPED(uint32_t, 0.0, 4294967295.0)
    /* The ends are the largest doubles below 2^63 and 2^64. */
    case KR_VAR_INT64: STORE_CLAMPED(int64_t, -9223372036854775808.0, 9223372036854774784.0)
    case KR_VAR_UINT64: STORE_CLAMPED(uint64_t, 0.0, 18446744073709549568.0)
#undef STORE_CLAMPED
    case KR_VAR_TEXT: snprintf((char*)buffer, TEXT_BYTES, "%.15g", x); break;
    default: break; /* an unknown code: the buffer's form is not ours to guess */
    }
}

/* The variable's value as a double; 0 without a buffer or for an unknown type code. */
static double readValue(const VARIABLE_STRUCT* variable)
{
    const void* buffer = variable ? variable->value : NULL;
    if (!buffer)
        return 0.0;
    switch (variable->type) {
    case KR_VAR_FLOAT: { float v; memcpy(&v, buffer, sizeof v); return (double)v; }
    case KR_VAR_DOUBLE: { double v; memcpy(&v, buffer, sizeof v); return v; }
    case KR_VAR_INT8: { int8_t v; memcpy(&v, buffer, sizeof v); return v; }
    case KR_VAR_UINT8: { uint8_t v; memcpy(&v, buffer, sizeof v); return v; }
    case KR_VAR_INT16: { int16_t v; memcpy(&v, buffer, sizeof v); return v; }
    case KR_VAR_UINT16: { uint16_t v; memcpy(&v, buffer, sizeof v); return v; }
    case KR_VAR_INT32: { int32_t v; memcpy(&v, buffer, sizeof v); return v; }
    case KR_VAR_UINT32: { uint32_t v; memcpy(&v, buffer, sizeof v); return v; }
    case KR_VAR_INT64: { int64_t v; memcpy(&v, buffer, sizeof v); return (double)v; }
    case KR_VAR_UINT64: { uint64_t v; memcpy(&v, buffer, sizeof v); return (double)v; }
    case KR_VAR_TEXT: {
        /* The text may fill the whole buffer without a terminator. */
        char text[TEXT_BYTES];
        memcpy(text, buffer, TEXT_BYTES - 1);
        text[TEXT_BYTES - 1] = '\0';
        return strtod(text, NULL);
    }
    default: return 0.0;
    }
}

/* Which item of GIVES a variable chose; the first one when the view stored no parameters.
 * Parameter slots end with one whose text is null, so the first slot is always readable. */
static int givesOf(const VARIABLE_STRUCT* variable)
{
    if (!variable->para || !variable->para[0].sval)
        return GIVES_RUNS;
    return variable->para[0].ival;
}

/* The first data parameter as milliseconds; 0 when the view stored none. The text is read up to
 * its terminator or the slot's size, whichever comes first. */
static int blockMsOf(const DD_DATA_TYPE_STRUCT* source)
{
    char text[32];
    const PARA_STRUCT* slot = source->para;
    size_t n = 0;
    long ms;
    if (!slot || !slot->sval)
        return 0;
    while (n + 1 < sizeof text && n < slot->size && slot->sval[n] != '\0') {
        text[n] = slot->sval[n];
        ++n;
    }
    text[n] = '\0';
    ms = strtol(text, NULL, 10); /* atoi is undefined for numbers beyond int */
    return ms < 0 ? 0 : ms > INT_MAX ? INT_MAX : (int)ms;
}

#ifndef EXAMPLE_NO_VERSION
KRD_EXPORT int krdVersion(void)
{
    return EXAMPLE_VERSION;
}
#endif

#ifndef EXAMPLE_NO_INFO
KRD_EXPORT int KRD_ENTRY(Info)(DD_DATA_TYPE_STRUCT* source)
{
    int i;
#ifdef EXAMPLE_GLOBALS
    const int mode = 1;
#else
    const int mode = 0;
#endif
    if (!source || !source->init || !source->option)
        return -1;
    source->init(source, "Example Data", EXAMPLE_TYPE, mode);
    for (i = 0; i < EXAMPLE_DATA_PARAMETERS; ++i) {
        char title[32];
        if (i == 0)
            snprintf(title, sizeof title, "RUN BLOCK MS");
        else if (i == 1)
            snprintf(title, sizeof title, "LABEL");
        else
            snprintf(title, sizeof title, "SPARE %d", i);
        source->option(source, 0, 0, 0u, title);
    }
    source->option(source, 1, 1, 0u, "GIVES", "RUNS", "LAST SET", "THREAD", (const char*)NULL);
    return 0;
}
#endif

KRD_EXPORT int KRD_ENTRY(Open)(DD_DATA_TYPE_STRUCT* source)
{
    ExampleState* state;
    if (!source)
        return -1;
    /* A state left over from an Open without Close is started afresh. */
    state = (ExampleState*)source->data;
    if (!state)
        state = (ExampleState*)calloc(1, sizeof *state);
    else
        memset(state, 0, sizeof *state);
    if (!state)
        return -1;
    state->blockMs = blockMsOf(source);
    source->data = state;
#ifdef EXAMPLE_GLOBALS
    exampleGlobalFloat = 0.0f;
    exampleGlobalCount = 0;
    exampleGlobalText[0] = '\0';
#endif
    if (state->blockMs > 0 && source->log)
        source->log("Example: each Run blocks for %d ms\n", state->blockMs);
    return 0;
}

KRD_EXPORT int KRD_ENTRY(Close)(DD_DATA_TYPE_STRUCT* source)
{
    if (!source)
        return -1;
    free(source->data);
    source->data = NULL;
    return 0;
}

KRD_EXPORT int KRD_ENTRY(Run)(DD_DATA_TYPE_STRUCT* source)
{
    ExampleState* state = source ? (ExampleState*)source->data : NULL;
    if (!state)
        return -1;
    state->runs += 1;
#ifdef EXAMPLE_GLOBALS
    exampleGlobalCount += 1;
    exampleGlobalFloat = 0.5f * (float)exampleGlobalCount;
    snprintf(exampleGlobalText, sizeof exampleGlobalText, "run %d", exampleGlobalCount);
#endif
    if (state->blockMs > 0) {
        struct timespec left;
        left.tv_sec = state->blockMs / 1000;
        left.tv_nsec = (long)(state->blockMs % 1000) * 1000000L;
        while (nanosleep(&left, &left) != 0 && errno == EINTR) {
        }
    }
    return 0;
}

KRD_EXPORT int KRD_ENTRY(PostRun)(DD_DATA_TYPE_STRUCT* source)
{
    ExampleState* state = source ? (ExampleState*)source->data : NULL;
    if (!state)
        return -1;
    state->postRuns += 1;
    return 0;
}

KRD_EXPORT int KRD_ENTRY(StartView)(DD_DATA_TYPE_STRUCT* source)
{
    ExampleState* state = source ? (ExampleState*)source->data : NULL;
    if (!state)
        return -1;
    state->startViews += 1;
    return 0;
}

KRD_EXPORT int KRD_ENTRY(Get)(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    ExampleState* state = source ? (ExampleState*)source->data : NULL;
    if (!state || !variable || !variable->value)
        return -1;
    switch (givesOf(variable)) {
    case GIVES_RUNS:
        storeValue(variable, (double)state->runs);
        break;
    case GIVES_LAST_SET:
        storeValue(variable, state->lastSet);
        break;
    case GIVES_THREAD:
        if (variable->type == KR_VAR_TEXT) {
            /* Linux limits thread names to 16 bytes with the terminator. */
            char name[16] = "";
            if (pthread_getname_np(pthread_self(), name, sizeof name) != 0)
                name[0] = '\0';
            snprintf((char*)variable->value, TEXT_BYTES, "%s", name);
        }
        break;
    default:
        break;
    }
    return 0;
}

KRD_EXPORT int KRD_ENTRY(Set)(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    ExampleState* state = source ? (ExampleState*)source->data : NULL;
    if (!state || !variable || !variable->value)
        return -1;
    state->lastSet = readValue(variable);
    return 0;
}

KRD_EXPORT int KRD_ENTRY(NewData)(DD_DATA_TYPE_STRUCT* source)
{
    return source ? 0 : -1;
}

KRD_EXPORT int KRD_ENTRY(NewVariable)(VARIABLE_STRUCT* variable)
{
    return variable ? 0 : -1;
}

KRD_EXPORT int KRD_ENTRY(CallbackData)(int index, int value, void* argument, DD_DATA_TYPE_STRUCT* source)
{
    (void)index;
    (void)value;
    (void)argument;
    return source ? 0 : -1;
}

KRD_EXPORT int KRD_ENTRY(CallbackVar)(int index, int value, void* argument, VARIABLE_STRUCT* variable)
{
    (void)index;
    (void)value;
    (void)argument;
    return variable ? 0 : -1;
}
