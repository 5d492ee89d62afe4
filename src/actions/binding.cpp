// Binding actions to variables by name. Names are compared once per start; afterwards a frame
// and a data cycle only follow the pointers made here.
#include "KorelEdit.h"
#include "actions/actions.h"
#include "data/valueBuffer.h"

#include <cstdlib>
#include <cstring>

namespace {

// A graph keeps its rings of samples + 1 floats; a damaged file may store any count, and four
// rings of a billion floats would exhaust the host's memory for nothing a screen can show.
constexpr int32_t kMaxGraphSamples = 1 << 24;

template <class Visit> void forEachVariable(DD_DATA_TYPE_STRUCT* sources, Visit visit)
{
    for (DD_DATA_TYPE_STRUCT* source = sources; source; source = source->next)
        for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next)
            visit(variable);
}

// Children first, then the element's own actions, siblings in order.
template <class Visit> void forEachAction(ELEMENT_STRUCT* list, Visit visit)
{
    for (ELEMENT_STRUCT* element = list; element; element = element->next) {
        if (element->type == KR_GROUP)
            forEachAction(element->child, visit);
        for (ACTION_STRUCT* action = element->actions; action; action = action->next)
            visit(element, action);
    }
}

void* freshHeldCopy(void* old, int type)
{
    free(old);
    return calloc(1, valueBufferSize(type));
}

float* freshRing(float* old, int32_t size)
{
    free(old);
    return size > 0 ? static_cast<float*>(calloc(size_t(size), sizeof(float))) : nullptr;
}

void forgetRings(ACTION_STRUCT* action)
{
    free(action->inX);
    free(action->inY);
    free(action->outX);
    free(action->outY);
    action->inX = action->inY = action->outX = action->outY = nullptr;
    action->inSize = action->outSize = 0;
}

void forgetBinding(ACTION_STRUCT* action)
{
    action->value = action->value2 = nullptr;
    action->variable = nullptr;
    action->filterValue = 0;
    free(action->heldValue);
    free(action->heldValue2);
    action->heldValue = action->heldValue2 = nullptr;
    forgetRings(action);
}

// A trace whose rings are refused keeps sizes of 0: it neither samples nor draws.
void makeGraphRings(ACTION_STRUCT* action, const GRAPH_STRUCT* graph)
{
    int32_t samples = graph->samples;
    if (samples < 0 || samples > kMaxGraphSamples) {
        logMsg(1, "error: graph with %d samples not sampled\n", samples);
        return;
    }
    int32_t size = samples + 1;
    action->inX = freshRing(action->inX, size);
    action->inY = freshRing(action->inY, size);
    action->outX = freshRing(action->outX, size);
    action->outY = freshRing(action->outY, size);
    if (!action->inX || !action->inY || !action->outX || !action->outY) {
        logMsg(1, "error: no memory for a graph of %d samples\n", samples);
        forgetRings(action);
        return;
    }
    action->inSize = action->outSize = size;
    // Fresh rings hold nothing, whatever a run before with other sizes left in the indices.
    action->inTail = action->inHead = action->inCount = 0;
    action->outTail = action->outHead = action->outCount = 0;
}

void bindAction(ELEMENT_STRUCT* element, ACTION_STRUCT* action, DD_DATA_TYPE_STRUCT* sources)
{
    forgetBinding(action);
    getAB(&action->offset, &action->slope, action->a0, action->b0, action->a1, action->b1);
    getAB(&action->offset2, &action->slope2, action->var2A0, action->var2B0, action->var2A1, action->var2B1);
    const bool input = action->type == KR_ACTION_INPUT;
    // With one name in two sources the last one in list order stands.
    forEachVariable(sources, [&](VARIABLE_STRUCT* variable) {
        if (strcmp(variable->name, action->var) == 0) {
            action->varType = variable->type;
            action->variable = variable;
            if (input)
                variable->readWrite = 1;
            action->value = variable->value;
            action->heldValue = freshHeldCopy(action->heldValue, variable->type);
        }
        if (strcmp(variable->name, action->var2) == 0) {
            action->varType = variable->type;
            if (input)
                variable->readWrite = 1;
            action->value2 = variable->value;
            action->heldValue2 = freshHeldCopy(action->heldValue2, variable->type);
        }
    });
    if (element->type == KR_GRAPH && element->data)
        makeGraphRings(action, static_cast<const GRAPH_STRUCT*>(element->data));
    // The action stays and reads 0.
    if (!action->value)
        logMsg(1, "error: var <%s> not found\n", action->var);
}

} // namespace

void getAB(float* a, float* b, float x0, float y0, float x1, float y1)
{
    if (x0 == x1) {
        *a = 0;
        *b = 1;
        return;
    }
    *b = (y0 - y1) / (x0 - x1);
    *a = y0 - *b * x0;
}

int assignVariablesReadWrite(ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* sources)
{
    forEachVariable(sources, [](VARIABLE_STRUCT* variable) { variable->readWrite = 0; });
    forEachAction(elements, [sources](ELEMENT_STRUCT*, ACTION_STRUCT* action) {
        if (action->type == KR_ACTION_INPUT)
            forEachVariable(sources, [action](VARIABLE_STRUCT* variable) {
                if (strcmp(variable->name, action->var) == 0)
                    variable->readWrite = 1;
            });
    });
    return 0;
}

int assignVariablesAction(ELEMENT_STRUCT* list, DD_DATA_TYPE_STRUCT* sources)
{
    forEachAction(list, [sources](ELEMENT_STRUCT* element, ACTION_STRUCT* action) { bindAction(element, action, sources); });
    return 0;
}

int assignVariables(ELEMENT_STRUCT* elements, DD_DATA_TYPE_STRUCT* sources)
{
    forEachVariable(sources, [](VARIABLE_STRUCT* variable) { variable->readWrite = 0; });
    makeValueBuffers(sources);
    return assignVariablesAction(elements, sources);
}
