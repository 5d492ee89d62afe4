// The road of a value from its source to the variable's buffer: buffers made at each start,
// default values written through Set, and the data cycle that runs every source.
#include "actions/actions.h"
#include "data/valueBuffer.h"

#include <cstdlib>

namespace {

// Defaults take integers in any base strtol knows ("0x1F" is 31), and the long codes only in
// their low half, as every transfer moves them.
constexpr TextRules kDefaultText{0, false, LongWidth::LowHalf};

// Plug-ins with global variables: what an input action wrote goes out, otherwise the
// plug-in's value comes in.
void copyGlobal(VARIABLE_STRUCT* variable)
{
    if (!variable->global || !variable->value)
        return;
    if (variable->readWrite && variable->written) {
        transferValue(variable->global, variable->value, variable->type);
        variable->written = 0;
    } else {
        transferValue(variable->value, variable->global, variable->type);
    }
}

} // namespace

int makeValueBuffers(DD_DATA_TYPE_STRUCT* sources)
{
    for (DD_DATA_TYPE_STRUCT* source = sources; source; source = source->next)
        for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next) {
            free(variable->value);
            variable->value = calloc(1, valueBufferSize(variable->type));
            // Without a buffer the variable stays silent: the cycle passes it over.
            if (!variable->value)
                logMsg(1, "makeValueBuffers: out of memory\n");
        }
    return 0;
}

int writeDefault(DD_DATA_TYPE_STRUCT* sources)
{
    for (DD_DATA_TYPE_STRUCT* source = sources; source; source = source->next) {
        if (!source->globalVariables)
            for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next) {
                if (!variable->value)
                    continue;
                if (source->set && variable->defaultValue[0]) {
                    variable->changed = 1;
                    parseValue(variable->value, variable->type, variable->defaultValue, kDefaultText);
                    source->set(variable, source);
                }
                variable->lastValue = firstEightBytes(variable->value);
            }
        if (source->postRun)
            source->postRun(source);
    }
    return 0;
}

int fillDP(DD_DATA_TYPE_STRUCT* sources)
{
    for (DD_DATA_TYPE_STRUCT* source = sources; source; source = source->next) {
        if (source->run)
            source->run(source);
        for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next) {
            if (source->globalVariables) {
                copyGlobal(variable);
                continue;
            }
            if (!variable->value)
                continue;
            // Set before Get: what the view wrote reaches the source before its answer.
            if (variable->readWrite) {
                if (source->set) {
                    variable->changed = firstEightBytes(variable->value) != variable->lastValue;
                    source->set(variable, source);
                }
                if (source->get)
                    source->get(variable, source);
                variable->lastValue = firstEightBytes(variable->value);
            } else if (source->get) {
                source->get(variable, source);
            }
        }
        if (source->postRun)
            source->postRun(source);
    }
    return 0;
}
