// The expression engine: scanner, a one-pass shunting-yard compiler, and an evaluation that
// runs the postfix stack from the bottom with a value stack. No step recurses, so the nesting
// of an expression is bounded only by its length, never by the thread's stack.
#include "data/expression.h"

#include "Korel2D.h"
#include "base/truncate.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>

namespace {

// ASCII only: the language must not change with the locale.
bool isLetter(char c)
{
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z');
}

bool isDigit(char c)
{
    return c >= '0' && c <= '9';
}

bool isWordCharacter(char c)
{
    return isLetter(c) || isDigit(c) || c == '_';
}

bool isOperator(uint32_t code)
{
    return code >= TOKEN_IF;
}

struct Symbol {
    const char* text;
    uint32_t code;
};

// The two-character forms come first, so that "||" isn't read as two "|".
const Symbol kSymbols[] = {
    {"||", TOKEN_LOG_OR}, {"&&", TOKEN_LOG_AND}, {"==", TOKEN_EQUAL}, {"!=", TOKEN_NOT_EQUAL},
    {">=", TOKEN_GREATER_EQUAL}, {"<=", TOKEN_LESS_EQUAL}, {"&", TOKEN_BIT_AND}, {"|", TOKEN_BIT_OR},
    {">", TOKEN_GREATER}, {"<", TOKEN_LESS}, {"!", TOKEN_LOG_NOT}, {"~", TOKEN_BIT_NOT}, {"%", TOKEN_MOD},
    {"(", TOKEN_OPEN}, {")", TOKEN_CLOSE}, {"*", TOKEN_MULT}, {"+", TOKEN_PLUS}, {"/", TOKEN_DIV},
    {"^", TOKEN_BIT_EXCL}, {"?", TOKEN_IF}, {",", TOKEN_COMMA}, {":", TOKEN_IF_THEN}, {"-", TOKEN_MINUS},
};

struct Word {
    const char* text;
    uint32_t code;
    uint32_t function;
    double value;
};

const Word kWords[] = {
    {"PI", TOKEN_NUMBER, 0, 3.141592653}, {"E", TOKEN_NUMBER, 0, 2.7182818284},
    {"R2D", TOKEN_NUMBER, 0, 57.29577951}, {"D2R", TOKEN_NUMBER, 0, 1 / 57.29577951},
    {"min", TOKEN_FUNCTION, FUNCTION_MIN, 0}, {"max", TOKEN_FUNCTION, FUNCTION_MAX, 0},
    {"int", TOKEN_FUNCTION, FUNCTION_FINT, 0}, {"sinh", TOKEN_FUNCTION, FUNCTION_SINH, 0},
    {"cosh", TOKEN_FUNCTION, FUNCTION_COSH, 0}, {"tanh", TOKEN_FUNCTION, FUNCTION_TANH, 0},
    {"sin", TOKEN_FUNCTION, FUNCTION_SIN, 0}, {"cos", TOKEN_FUNCTION, FUNCTION_COS, 0},
    {"tan", TOKEN_FUNCTION, FUNCTION_TAN, 0}, {"abs", TOKEN_FUNCTION, FUNCTION_ABS, 0},
    {"asin", TOKEN_FUNCTION, FUNCTION_ASIN, 0}, {"acos", TOKEN_FUNCTION, FUNCTION_ACOS, 0},
    {"atan2", TOKEN_FUNCTION, FUNCTION_ATAN2, 0}, {"atan", TOKEN_FUNCTION, FUNCTION_ATAN, 0},
    {"log", TOKEN_FUNCTION, FUNCTION_LOG, 0}, {"sqrt", TOKEN_FUNCTION, FUNCTION_SQRT, 0},
    {"exp", TOKEN_FUNCTION, FUNCTION_EXP, 0}, {"ceil", TOKEN_FUNCTION, FUNCTION_CEIL, 0},
    {"floor", TOKEN_FUNCTION, FUNCTION_FLOOR, 0}, {"pow", TOKEN_FUNCTION, FUNCTION_POW, 0},
    {"fabs", TOKEN_FUNCTION, FUNCTION_FABS, 0},
};

// A minus after an operand or a closing parenthesis subtracts; after these it negates. The
// list is the language's, so a minus after ||, &&, |, ^, & or % subtracts too.
bool minusIsUnaryAfter(uint32_t previous)
{
    switch (previous) {
    case TOKEN_NONE: case TOKEN_OPEN: case TOKEN_COMMA: case TOKEN_IF: case TOKEN_IF_THEN:
    case TOKEN_NOT_EQUAL: case TOKEN_EQUAL: case TOKEN_GREATER_EQUAL: case TOKEN_GREATER:
    case TOKEN_LESS_EQUAL: case TOKEN_LESS: case TOKEN_MINUS: case TOKEN_PLUS: case TOKEN_DIV: case TOKEN_MULT:
        return true;
    }
    return false;
}

int operandCount(const Token& token)
{
    switch (token.code) {
    case TOKEN_IF:
        return 3;
    case TOKEN_NEGATE: case TOKEN_LOG_NOT: case TOKEN_BIT_NOT:
        return 1;
    case TOKEN_FUNCTION:
        switch (token.function) {
        case FUNCTION_ATAN2: case FUNCTION_POW: case FUNCTION_MIN: case FUNCTION_MAX:
            return 2;
        }
        return 1;
    }
    return token.code >= TOKEN_LOG_OR && token.code < TOKEN_NEGATE ? 2 : 0;
}

// Operands beyond 32 bits saturate. By 0 there is no remainder, and C leaves the lowest integer
// by -1 undefined: both read 0, which is what -1 gives every other operand anyway.
double remainder32(double a, double b)
{
    const int32_t x = truncToInt(a), y = truncToInt(b);
    if (y == 0 || y == -1)
        return 0.0;
    return x % y;
}

double function(uint32_t code, double a, double b)
{
    switch (code) {
    case FUNCTION_SIN: return std::sin(a);
    case FUNCTION_COS: return std::cos(a);
    case FUNCTION_TAN: return std::tan(a);
    case FUNCTION_LOG: return std::log(a);
    // In 64 bits, so that the lowest 32-bit integer has an absolute value too.
    case FUNCTION_ABS: return double(std::llabs(truncToInt(a)));
    case FUNCTION_ASIN: return std::asin(a);
    case FUNCTION_ACOS: return std::acos(a);
    case FUNCTION_ATAN: return std::atan(a);
    case FUNCTION_SQRT: return std::sqrt(a);
    case FUNCTION_EXP: return std::exp(a);
    case FUNCTION_CEIL: return std::ceil(a);
    case FUNCTION_FLOOR: return std::floor(a);
    case FUNCTION_SINH: return std::sinh(a);
    case FUNCTION_COSH: return std::cosh(a);
    case FUNCTION_TANH: return std::tanh(a);
    case FUNCTION_ATAN2: return std::atan2(a, b);
    case FUNCTION_POW: return std::pow(a, b);
    case FUNCTION_FABS: return std::fabs(a);
    case FUNCTION_MIN: return std::min(a, b);
    case FUNCTION_MAX: return std::max(a, b);
    case FUNCTION_FINT: return truncToInt(a);
    }
    return 0.0;
}

// An operator, a function or an unknown character applied to its operands, given left to right.
double apply(const Token* token, const double* x)
{
    switch (token->code) {
    case TOKEN_IF: return operator_if(x[0], x[1], x[2]);
    case TOKEN_LOG_OR: return x[0] != 0 || x[1] != 0;
    case TOKEN_LOG_AND: return x[0] != 0 && x[1] != 0;
    case TOKEN_BIT_OR: return truncToInt(x[0]) | truncToInt(x[1]);
    case TOKEN_BIT_EXCL: return truncToInt(x[0]) ^ truncToInt(x[1]);
    case TOKEN_BIT_AND: return truncToInt(x[0]) & truncToInt(x[1]);
    case TOKEN_NOT_EQUAL: return x[0] != x[1];
    case TOKEN_EQUAL: return x[0] == x[1];
    case TOKEN_GREATER_EQUAL: return x[0] >= x[1];
    case TOKEN_GREATER: return x[0] > x[1];
    case TOKEN_LESS_EQUAL: return x[0] <= x[1];
    case TOKEN_LESS: return x[0] < x[1];
    case TOKEN_MINUS: return x[0] - x[1];
    case TOKEN_PLUS: return x[0] + x[1];
    case TOKEN_MOD: return remainder32(x[0], x[1]);
    case TOKEN_DIV: return x[0] / x[1];
    case TOKEN_MULT: return x[0] * x[1];
    case TOKEN_NEGATE: return -x[0];
    case TOKEN_LOG_NOT: return x[0] == 0;
    case TOKEN_BIT_NOT: return ~truncToInt(x[0]);
    case TOKEN_FUNCTION: return function(token->function, x[0], x[1]);
    }
    return 0.0;
}

// Reading the output from the top down, an operator takes its operands from below it, and
// whatever lies below the first complete expression is never reached. Forward evaluation gives
// the same values from the reached part alone: a missing operand, at the bottom, reads 0.0 in
// both. The value stack is sized here, so evaluation allocates nothing.
int planEvaluation(Parser* parser)
{
    TokenStack* output = parser->output;
    stackReset(output);
    int missing = 1;
    parser->reached = 0;
    while (Token* token = stackPopShadow(output)) {
        missing += operandCount(*token) - 1;
        if (missing == 0) {
            parser->reached = output->shadow;
            break;
        }
    }
    int height = 0, depth = 1;
    for (int i = parser->reached; i < output->count; ++i) {
        height = std::max(height - operandCount(output->items[i]), 0) + 1;
        depth = std::max(depth, height);
    }
    parser->values = static_cast<double*>(malloc(sizeof(double) * depth));
    return parser->values ? 0 : -1;
}

constexpr int kRefused = -2;

int moveTop(TokenStack* from, TokenStack* to)
{
    return stackPush(to, stackPop(from));
}

// One token of the text into the stacks.
int compileToken(Parser* parser)
{
    TokenStack *operators = parser->operators, *output = parser->output;
    const Token& token = parser->token;
    Token* top;
    switch (token.code) {
    case TOKEN_NUMBER: case TOKEN_VARIABLE:
        return stackPush(output, &token);
    case TOKEN_OPEN:
        return stackPush(operators, &token);
    case TOKEN_CLOSE:
        // Down to the nearest (, keeping operators; commas and other marks go.
        while ((top = stackPop(operators)) && top->code != TOKEN_OPEN)
            if (isOperator(top->code) && stackPush(output, top) != 0)
                return -1;
        return 0;
    case TOKEN_COMMA:
        while ((top = stackTop(operators)) && isOperator(top->code))
            if (moveTop(operators, output) != 0)
                return -1;
        return stackPush(operators, &token);
    case TOKEN_IF: case TOKEN_IF_THEN:
        // Conditionals chain to the right: a pending ? stays below the next one.
        while ((top = stackTop(operators)) && top->code >= TOKEN_LOG_OR)
            if (moveTop(operators, output) != 0)
                return -1;
        return token.code == TOKEN_IF ? stackPush(operators, &token) : 0;
    }
    // Operators, functions and unknown characters: equal codes associate to the left.
    while ((top = stackTop(operators)) && isOperator(top->code) && top->code >= token.code)
        if (moveTop(operators, output) != 0)
            return -1;
    return stackPush(operators, &token);
}

int compile(Parser* parser)
{
    int tokens = 0;
    while (scanner(parser) != TOKEN_DONE) {
        if (++tokens > kExpressionMaxTokens) {
            logMsg(1, "parse: expression of more than %d tokens refused, it reads 0\n", kExpressionMaxTokens);
            return kRefused;
        }
        if (compileToken(parser) != 0)
            return -1;
    }
    // Left-over operators, and a left-over ( too, which reads 0.0.
    while (Token* top = stackPop(parser->operators))
        if (top->code != TOKEN_COMMA && top->code != TOKEN_IF_THEN && stackPush(parser->output, top) != 0)
            return -1;
    return 0;
}

} // namespace

int checkWord(const char* text, const char* word, int n)
{
    return strncmp(text, word, size_t(n)) != 0 || isWordCharacter(text[n]);
}

double operator_if(double a, double b, double c)
{
    return a == 0 ? c : b;
}

uint32_t scanner(Parser* parser)
{
    Token& token = parser->token;
    const uint32_t previous = token.code;
    token.value = 0;
    token.function = 0;
    token.name[0] = 0;
    token.cache = nullptr;
    const char* text = parser->text ? parser->text : "";
    while (text[parser->position] == ' ' || text[parser->position] == '\t' || text[parser->position] == '\n')
        ++parser->position;
    const char* at = text + parser->position;
    if (*at == 0)
        return token.code = TOKEN_DONE;
    if (isDigit(*at)) {
        // strtod takes exponents and hexadecimal too; a number never begins with a point.
        char* end;
        token.value = strtod(at, &end);
        parser->position += int(end - at);
        return token.code = TOKEN_NUMBER;
    }
    for (const Symbol& symbol : kSymbols) {
        const size_t length = strlen(symbol.text);
        if (strncmp(at, symbol.text, length) == 0) {
            parser->position += int(length);
            token.code = symbol.code;
            if (token.code == TOKEN_MINUS && minusIsUnaryAfter(previous))
                token.code = TOKEN_NEGATE;
            return token.code;
        }
    }
    for (const Word& word : kWords) {
        const int length = int(strlen(word.text));
        if (checkWord(at, word.text, length) == 0) {
            parser->position += length;
            token.function = word.function;
            token.value = word.value;
            return token.code = word.code;
        }
    }
    if (isLetter(*at) || *at == '_') {
        int length = 0;
        while (isWordCharacter(at[length]))
            ++length;
        // A longer name keeps its first 255 characters.
        const int kept = std::min(length, kTokenNameSize - 1);
        memcpy(token.name, at, size_t(kept));
        token.name[kept] = 0;
        parser->position += length;
        return token.code = TOKEN_VARIABLE;
    }
    ++parser->position;
    return token.code = TOKEN_NONE;
}

int parse(Parser* parser)
{
    parser->position = 0;
    parser->token = Token{};
    parser->token.code = TOKEN_NONE;
    parser->readVariable = nullptr;
    parser->values = nullptr;
    parser->reached = 0;
    parser->operators = stackCreate();
    parser->output = stackCreate();
    int result = parser->operators && parser->output ? compile(parser) : -1;
    stackDelete(parser->operators);
    parser->operators = nullptr;
    if (result == 0)
        result = planEvaluation(parser);
    if (result == -1)
        logMsg(1, "parse: out of memory\n");
    if (result != 0) {
        result = -1;
        // Refused or out of memory: nothing is left to evaluate, so the expression reads 0.0.
        if (parser->output)
            parser->output->count = parser->output->shadow = 0;
        free(parser->values);
        parser->values = nullptr;
    }
    return result;
}

void setVarFunc(Parser* parser, void* user, ReadVariableFunc function)
{
    parser->user = user;
    parser->readVariable = function;
}

double evaluate(Parser* parser)
{
    TokenStack* output = parser->output;
    double* values = parser->values;
    if (!output || !values || output->count == 0)
        return 0.0;
    int height = 0;
    for (int i = parser->reached; i < output->count; ++i) {
        Token* token = &output->items[i];
        // Operands make about half of the tokens and take nothing from the stack.
        if (token->code == TOKEN_NUMBER) {
            values[height++] = token->value;
            continue;
        }
        if (token->code == TOKEN_VARIABLE) {
            values[height++] = parser->readVariable ? parser->readVariable(parser->user, token, token->name) : 1.0;
            continue;
        }
        // An operator takes the top values where they lie, left to right. Copying them out
        // into a zeroed array first took a fifth of a typical evaluation.
        const int count = operandCount(*token);
        if (height >= count) {
            height -= count;
            values[height] = apply(token, values + height);
        } else {
            // Operands missing at the bottom read 0.0.
            double operands[3] = {0.0, 0.0, 0.0};
            for (int k = count - 1; height > 0; --k)
                operands[k] = values[--height];
            values[height] = apply(token, operands);
        }
        ++height;
    }
    return values[height - 1];
}

void cleanup(Parser* parser)
{
    stackDelete(parser->output);
    parser->output = nullptr;
    free(parser->values);
    parser->values = nullptr;
}
