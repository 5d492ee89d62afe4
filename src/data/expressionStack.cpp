// The token stack of the expression engine, and the names of tokens and functions for printing.
#include "data/expression.h"

#include <cstdio>
#include <cstdlib>

TokenStack* stackCreate()
{
    TokenStack* stack = static_cast<TokenStack*>(calloc(1, sizeof(TokenStack)));
    if (!stack)
        return nullptr;
    stack->capacity = 5;
    stack->items = static_cast<Token*>(malloc(sizeof(Token) * stack->capacity));
    if (!stack->items) {
        free(stack);
        return nullptr;
    }
    return stack;
}

void stackDelete(TokenStack* stack)
{
    if (!stack)
        return;
    free(stack->items);
    free(stack);
}

int stackPush(TokenStack* stack, const Token* token)
{
    if (stack->count == stack->capacity) {
        // Doubling: deep nesting makes tens of thousands of tokens, and growing by one would
        // copy the whole array for each of them.
        Token* items = static_cast<Token*>(realloc(stack->items, sizeof(Token) * stack->capacity * 2));
        if (!items)
            return -1;
        stack->items = items;
        stack->capacity *= 2;
    }
    stack->items[stack->count++] = *token;
    stack->shadow = stack->count;
    return 0;
}

Token* stackPop(TokenStack* stack)
{
    if (stack->count == 0)
        return nullptr;
    stack->shadow = --stack->count;
    return &stack->items[stack->count];
}

Token* stackTop(TokenStack* stack)
{
    return stack->count ? &stack->items[stack->count - 1] : nullptr;
}

Token* stackPopShadow(TokenStack* stack)
{
    return stack->shadow > 0 ? &stack->items[--stack->shadow] : nullptr;
}

void stackReset(TokenStack* stack)
{
    stack->shadow = stack->count;
}

void stackPrint(const TokenStack* stack)
{
    for (int i = 0; i < stack->count; ++i)
        printf("%s\n", getToken(&stack->items[i]));
}

const char* getFunction(uint32_t code)
{
    static const char* const names[] = {"SIN", "COS", "TAN", "LOG", "ABS", "ASIN", "ACOS", "ATAN", nullptr,
                                        "SQRT", "EXP", "CEIL", "FLOOR", nullptr, "SINH", "COSH", "TANH",
                                        "ATAN2", "POW", "FABS", "MIN", "MAX", "FINT"};
    const uint32_t index = code - FUNCTION_SIN;
    return index < sizeof(names) / sizeof(names[0]) && names[index] ? names[index] : "Unknown";
}

const char* getToken(const Token* token)
{
    static const char* const plain[] = {nullptr, nullptr, "Token OPEN", "Token CLOSE", "Token NONE", "Token DONE",
                                        "Token COMMA"};
    static const char* const operators[] = {
        "Token IF", "Token IF_THEN", "Token LOG_OR", "Token LOG_AND", "Token BIT_OR", "Token BIT_EXCL",
        "Token BIT_AND", "Token NOT_EQUAL", "Token EQUAL", "Token GREATER_EQUAL", "Token GREATER",
        "Token LESS_EQUAL", "Token LESS", "Token MINUS", "Token PLUS", "Token MOD", "Token DIV", "Token MULT",
        "Token NEGATE", "Token LOG_NOT", "Token BIT_NOT"};
    static char buffer[512];
    switch (token->code) {
    case TOKEN_NUMBER:
        snprintf(buffer, sizeof(buffer), "Token NUMBER %.2f", token->value);
        return buffer;
    case TOKEN_VARIABLE:
        snprintf(buffer, sizeof(buffer), "Token VARIABLE %s", token->name);
        return buffer;
    case TOKEN_FUNCTION:
        snprintf(buffer, sizeof(buffer), "Token FUNCTION %s", getFunction(token->function));
        return buffer;
    }
    const uint32_t low = token->code - TOKEN_NUMBER, high = token->code - TOKEN_IF;
    if (low < sizeof(plain) / sizeof(plain[0]) && plain[low])
        return plain[low];
    return high < sizeof(operators) / sizeof(operators[0]) ? operators[high] : "Unknown";
}
