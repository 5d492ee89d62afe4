// Calculator (type 6): variables computed from an expression over any variables of the view,
// of every source, optionally copied into one more variable. Expressions are compiled at Open;
// the names they use are looked up once, in a table of all the view's variables that
// StartViewAll fills, and the record found is kept in the token.
#include "base/base.h"
#include "base/truncate.h"
#include "data/builtinSources.h"
#include "data/expression.h"
#include "data/valueBuffer.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

enum Parameter { kFormulaPara, kOutputPara };
constexpr uint32_t kTableStartSize = 50;

struct CalculatorState {
    mpiHash* variables; // every variable of the view by name, from StartViewAll on
};

CalculatorState* stateOf(DD_DATA_TYPE_STRUCT* source)
{
    return source ? static_cast<CalculatorState*>(source->data) : nullptr;
}

template <class Integer> void storeLowBytes(void* buffer, Integer number, size_t bytes)
{
    memcpy(buffer, &number, bytes);
}

// A result stored by the variable's type: integers saturate at their 32 or 64 bits first (NaN
// gives 0) and keep the low bytes of the type, so 300 into an unsigned byte is 44 and 1 / 0
// into a 32-bit integer is 2^31 - 1. Longs keep their low half, as every transfer moves it.
void storeResult(VARIABLE_STRUCT* variable, double result)
{
    void* buffer = variable->value;
    switch (variable->type) {
    case KR_VAR_FLOAT:
    case KR_VAR_DOUBLE:
        writeValue(buffer, variable->type, result);
        break;
    case KR_VAR_INT8:
    case KR_VAR_UINT8:
    case KR_VAR_INT16:
    case KR_VAR_UINT16:
    case KR_VAR_INT32:
    case KR_VAR_INT64:
        storeLowBytes(buffer, truncToInt(result), transferSize(variable->type));
        break;
    case KR_VAR_UINT32:
    case KR_VAR_UINT64:
        storeLowBytes(buffer, truncToInt64(result), transferSize(variable->type));
        break;
    case KR_VAR_TEXT: {
        char* text = static_cast<char*>(buffer);
        snprintf(text, kTextBufferSize, "%f", result);
        text[kTextBufferSize - 1] = '\0';
        break;
    }
    default:
        break;
    }
}

double krdParserVarRead(void* user, Token* token, const char* name)
{
    auto* source = static_cast<DD_DATA_TYPE_STRUCT*>(user);
    CalculatorState* state = stateOf(source);
    if (!state)
        return 0.0;
    // Not found yet: asked again at the next evaluation, as the table may still be filled.
    if (!token->cache)
        token->cache = mpiHashSearchAscii(state->variables, name);
    const auto* variable = static_cast<const VARIABLE_STRUCT*>(token->cache);
    if (!variable || !variable->value)
        return 0.0;
    if (variable->type == KR_VAR_TEXT)
        return strtod(static_cast<const char*>(variable->value), nullptr);
    return readValue(variable->value, variable->type);
}

int krdParserVarInfo(DD_DATA_TYPE_STRUCT* source)
{
    source->init(source, "Calculator", KRD_TYPE_CALCULATOR, 0);
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_FORMULA, 0, "  Y =");
    source->option(source, KRD_SCOPE_VARIABLE, KRD_FIELD_TEXT, 0, "OUTPUT");
    return 0;
}

int krdParserVarOpen(DD_DATA_TYPE_STRUCT* source)
{
    auto* state = static_cast<CalculatorState*>(calloc(1, sizeof(CalculatorState)));
    if (state)
        state->variables = mpiHashCreate(kTableStartSize);
    if (!state || !state->variables) {
        free(state);
        logMsg(1, "socketVar: error malloc\n");
        return -1;
    }
    source->data = state;
    for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next) {
        auto* parser = static_cast<Parser*>(calloc(1, sizeof(Parser)));
        if (!parser) {
            logMsg(1, "socketVar: error malloc\n");
            continue;
        }
        parser->text = variableParaText(variable, kFormulaPara);
        parse(parser);
        setVarFunc(parser, source, krdParserVarRead);
        variable->user = parser;
    }
    return 0;
}

int krdParserVarClose(DD_DATA_TYPE_STRUCT* source)
{
    if (CalculatorState* state = stateOf(source)) {
        mpiHashRemove(state->variables);
        free(state);
        source->data = nullptr;
    }
    for (VARIABLE_STRUCT* variable = source->variables; variable; variable = variable->next) {
        if (auto* parser = static_cast<Parser*>(variable->user)) {
            cleanup(parser);
            free(parser);
            variable->user = nullptr;
        }
    }
    return 0;
}

int krdParserVarStartViewAll(DD_DATA_TYPE_STRUCT* list, DD_DATA_TYPE_STRUCT* source)
{
    CalculatorState* state = stateOf(source);
    if (!list || !state)
        return 0;
    for (DD_DATA_TYPE_STRUCT* each = list; each; each = each->next)
        for (VARIABLE_STRUCT* variable = each->variables; variable; variable = variable->next)
            mpiHashInsertAscii(state->variables, variable->name, variable);
    return 0;
}

int krdParserVarGet(VARIABLE_STRUCT* variable, DD_DATA_TYPE_STRUCT* source)
{
    CalculatorState* state = stateOf(source);
    auto* parser = static_cast<Parser*>(variable->user);
    if (!state || !parser)
        return 0;
    const double result = evaluate(parser);
    storeResult(variable, result);
    const char* output = variableParaText(variable, kOutputPara);
    if (!output[0])
        return 0;
    // The target's own source sends it on in its turn: this cycle if it comes later in the
    // list, the next one if earlier.
    if (auto* target = static_cast<VARIABLE_STRUCT*>(mpiHashSearchAscii(state->variables, output))) {
        target->readWrite = 1;
        if (target->value)
            storeResult(target, result);
    }
    return 0;
}

} // namespace

void calculatorSourceEntries(DD_DATA_TYPE_STRUCT* source)
{
    quietEntries(source);
    source->info = krdParserVarInfo;
    source->open = krdParserVarOpen;
    source->close = krdParserVarClose;
    source->startViewAll = krdParserVarStartViewAll;
    source->get = krdParserVarGet;
    source->set = emptyVariableEntry;
}
