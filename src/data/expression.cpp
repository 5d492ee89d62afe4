// The expression engine: scanner, a one-pass shunting-yard compiler, and an evaluation that
// runs a plan made from the postfix stack, from the bottom, with a value stack. No step
// recurses, so the nesting of an expression is bounded only by its length, never by the
// thread's stack.
#include "data/expression.h"

#include "Korel2D.h"
#include "base/truncate.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <vector>

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

using Unary = double (*)(double);
using Binary = double (*)(double, double);

struct MathFunction {
    uint32_t code;
    Unary unary;   // of a function of one argument
    Binary binary; // of one of two
};

const MathFunction kMathFunctions[] = {
    {FUNCTION_SIN, [](double a) { return std::sin(a); }, nullptr},
    {FUNCTION_COS, [](double a) { return std::cos(a); }, nullptr},
    {FUNCTION_TAN, [](double a) { return std::tan(a); }, nullptr},
    {FUNCTION_LOG, [](double a) { return std::log(a); }, nullptr},
    // In 64 bits, so that the lowest 32-bit integer has an absolute value too.
    {FUNCTION_ABS, [](double a) { return double(std::llabs(truncToInt(a))); }, nullptr},
    {FUNCTION_ASIN, [](double a) { return std::asin(a); }, nullptr},
    {FUNCTION_ACOS, [](double a) { return std::acos(a); }, nullptr},
    {FUNCTION_ATAN, [](double a) { return std::atan(a); }, nullptr},
    {FUNCTION_SQRT, [](double a) { return std::sqrt(a); }, nullptr},
    {FUNCTION_EXP, [](double a) { return std::exp(a); }, nullptr},
    {FUNCTION_CEIL, [](double a) { return std::ceil(a); }, nullptr},
    {FUNCTION_FLOOR, [](double a) { return std::floor(a); }, nullptr},
    {FUNCTION_SINH, [](double a) { return std::sinh(a); }, nullptr},
    {FUNCTION_COSH, [](double a) { return std::cosh(a); }, nullptr},
    {FUNCTION_TANH, [](double a) { return std::tanh(a); }, nullptr},
    {FUNCTION_ATAN2, nullptr, [](double a, double b) { return std::atan2(a, b); }},
    {FUNCTION_POW, nullptr, [](double a, double b) { return std::pow(a, b); }},
    {FUNCTION_FABS, [](double a) { return std::fabs(a); }, nullptr},
    {FUNCTION_MIN, nullptr, [](double a, double b) { return std::min(a, b); }},
    {FUNCTION_MAX, nullptr, [](double a, double b) { return std::max(a, b); }},
    {FUNCTION_FINT, [](double a) { return double(truncToInt(a)); }, nullptr},
};

// A function code the scanner never makes reads 0.0, as an unknown token does.
const MathFunction& mathFunction(uint32_t code)
{
    static const MathFunction unknown = {0, [](double) { return 0.0; }, nullptr};
    for (const MathFunction& f : kMathFunctions)
        if (f.code == code)
            return f;
    return unknown;
}

// The operators of two operands that have no step of their own.
double applyBinary(uint32_t code, double a, double b)
{
    switch (code) {
    case TOKEN_LOG_OR: return a != 0 || b != 0;
    case TOKEN_LOG_AND: return a != 0 && b != 0;
    case TOKEN_BIT_OR: return truncToInt(a) | truncToInt(b);
    case TOKEN_BIT_EXCL: return truncToInt(a) ^ truncToInt(b);
    case TOKEN_BIT_AND: return truncToInt(a) & truncToInt(b);
    case TOKEN_NOT_EQUAL: return a != b;
    case TOKEN_EQUAL: return a == b;
    case TOKEN_GREATER_EQUAL: return a >= b;
    case TOKEN_LESS_EQUAL: return a <= b;
    case TOKEN_MOD: return remainder32(a, b);
    }
    return 0.0;
}

// The unary operators; a token that stands for no value (a character the language lacks, a
// comma or colon left over) gives 0.0.
double applyUnary(uint32_t code, double a)
{
    switch (code) {
    case TOKEN_NEGATE: return -a;
    case TOKEN_LOG_NOT: return a == 0;
    case TOKEN_BIT_NOT: return ~truncToInt(a);
    }
    return 0.0;
}

} // namespace

// One step of the evaluation plan: a token of the output, or a missing operand.
struct Step {
    uint8_t op;       // StepOp
    uint8_t operands; // of the token
    uint32_t code;    // the token's
    double value;     // of a number
    Token* token;     // of a variable, for the callback
    Unary unary;
    Binary binary;
};

namespace {

// The steps that evaluation dispatches on, dense so that one table of jumps serves them. Each
// binary step comes in three: its right operand on the stack, or the number or the variable
// that stood right before it in the output, taken into the step.
enum StepOp : uint8_t {
    OP_NUMBER,
    OP_VARIABLE,
    OP_ZERO, // a missing operand: 0.0
    OP_UNARY_FUNCTION,
    OP_IF,
    OP_OTHER, // a unary operator, or a token of no value
    OP_DONE,
    OP_PLUS,
    OP_MINUS = OP_PLUS + 3,
    OP_MULT = OP_MINUS + 3,
    OP_DIV = OP_MULT + 3,
    OP_GREATER = OP_DIV + 3,
    OP_LESS = OP_GREATER + 3,
    OP_BINARY_FUNCTION = OP_LESS + 3,
    OP_BINARY = OP_BINARY_FUNCTION + 3, // any other operator of two operands
    OP_COUNT = OP_BINARY + 3,
};

// Added to a binary step's code.
enum Right : uint8_t { RIGHT_ON_STACK, RIGHT_NUMBER, RIGHT_VARIABLE };

Step stepOf(Token& token)
{
    Step step{OP_OTHER, uint8_t(operandCount(token)), token.code, token.value, &token, nullptr, nullptr};
    switch (token.code) {
    case TOKEN_NUMBER: step.op = OP_NUMBER; break;
    case TOKEN_VARIABLE: step.op = OP_VARIABLE; break;
    case TOKEN_PLUS: step.op = OP_PLUS; break;
    case TOKEN_MINUS: step.op = OP_MINUS; break;
    case TOKEN_MULT: step.op = OP_MULT; break;
    case TOKEN_DIV: step.op = OP_DIV; break;
    case TOKEN_GREATER: step.op = OP_GREATER; break;
    case TOKEN_LESS: step.op = OP_LESS; break;
    case TOKEN_IF: step.op = OP_IF; break;
    case TOKEN_FUNCTION: {
        const MathFunction& f = mathFunction(token.function);
        step.op = f.binary ? OP_BINARY_FUNCTION : OP_UNARY_FUNCTION;
        step.unary = f.unary, step.binary = f.binary;
        break;
    }
    default:
        if (step.operands == 2)
            step.op = OP_BINARY;
    }
    return step;
}

bool isBinary(const Step& step)
{
    return step.op >= OP_PLUS;
}

// Reading the output from the top down, an operator takes its operands from below it, and
// whatever lies below the first complete expression is never reached. Forward evaluation gives
// the same values from the reached part alone. The height of the value stack at each token
// doesn't depend on the values, so the plan knows which operands are missing: they stand at
// the bottom, read 0.0, and become steps of their own where the bottom value began. The steps
// are small and contiguous, and evaluation checks nothing and allocates nothing.
int planEvaluation(Parser* parser)
{
    TokenStack* output = parser->output;
    stackReset(output);
    int missing = 1, reached = 0;
    while (Token* token = stackPopShadow(output)) {
        missing += operandCount(*token) - 1;
        if (missing == 0) {
            reached = output->shadow;
            break;
        }
    }
    // Where each value on the stack began, by token index, and how many zeros go before a token.
    std::vector<int> starts;
    std::vector<int> zerosBefore(size_t(output->count) + 1, 0);
    int zeros = 0;
    for (int i = reached; i < output->count; ++i) {
        const int count = operandCount(output->items[i]);
        const int height = int(starts.size());
        if (count > height) {
            const int at = height ? starts[0] : i;
            zerosBefore[size_t(at)] += count - height;
            zeros += count - height;
            starts.insert(starts.begin(), size_t(count - height), at);
        }
        const int start = count ? starts[starts.size() - size_t(count)] : i;
        starts.resize(starts.size() - size_t(count));
        starts.push_back(start);
    }
    const int stepCount = output->count - reached + zeros;
    parser->steps = static_cast<Step*>(calloc(size_t(stepCount) + 1, sizeof(Step)));
    if (!parser->steps)
        return -1;
    Step* step = parser->steps;
    int height = 0, depth = 1;
    for (int i = reached; i < output->count; ++i) {
        for (int k = 0; k < zerosBefore[size_t(i)]; ++k)
            *step++ = Step{OP_ZERO, 0, 0, 0.0, nullptr, nullptr, nullptr};
        height += zerosBefore[size_t(i)];
        depth = std::max(depth, height);
        Token& token = output->items[i];
        *step = stepOf(token);
        // A number or variable right before a binary step is its right operand: one step less,
        // and the variable is still asked for at its place in the order.
        Step* before = step > parser->steps ? step - 1 : nullptr;
        if (before && isBinary(*step) && (before->op == OP_NUMBER || before->op == OP_VARIABLE)) {
            step->op += before->op == OP_NUMBER ? RIGHT_NUMBER : RIGHT_VARIABLE;
            step->value = before->value, step->token = before->token;
            *before = *step;
        } else {
            ++step;
        }
        depth = std::max(depth, height = height - operandCount(token) + 1);
    }
    step->op = OP_DONE;
    parser->stepCount = int(step - parser->steps);
    // One more: the first push stores the top that holds nothing yet.
    parser->values = static_cast<double*>(malloc(sizeof(double) * size_t(depth + 1)));
    return parser->values ? 0 : -1;
}

void releasePlan(Parser* parser)
{
    free(parser->steps);
    free(parser->values);
    parser->steps = nullptr;
    parser->stepCount = 0;
    parser->values = nullptr;
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
    parser->steps = nullptr;
    parser->stepCount = 0;
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
        releasePlan(parser);
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
    const Step* step = parser->steps;
    if (!step || !parser->values || parser->stepCount == 0)
        return 0.0;
    const ReadVariableFunc readVariable = parser->readVariable;
    void* const user = parser->user;
    auto read = [=](const Step* s) { return readVariable ? readVariable(user, s->token, s->token->name) : 1.0; };
    // The top of the value stack stays in `top`, the values below it in memory: most steps
    // then change only `top`.
    double top = 0.0;
    double* below = parser->values;
    auto push = [&](double value) { *++below = top, top = value; };
    auto pop = [&] {
        const double value = top;
        top = *below--;
        return value;
    };

    // Direct threading (a GNU extension that GCC and Clang share): each step jumps to the next
    // one's code through its own jump, which a processor predicts far better than the one jump
    // of a switch. It makes an evaluation about a sixth faster.
#define K2D_BINARY_LABELS(name) &&name, &&name##Number, &&name##Variable
    static void* const kCode[OP_COUNT] = {
        &&number, &&variable, &&zero, &&unaryFunction, &&ifElse, &&other, &&done,
        K2D_BINARY_LABELS(plus), K2D_BINARY_LABELS(minus), K2D_BINARY_LABELS(mult), K2D_BINARY_LABELS(div),
        K2D_BINARY_LABELS(greater), K2D_BINARY_LABELS(less), K2D_BINARY_LABELS(binaryFunction),
        K2D_BINARY_LABELS(binary)};
#define K2D_NEXT goto* kCode[(++step)->op]
// The three forms of a binary step computing `result` from `top` and `right`.
#define K2D_BINARY_STEP(name, result)                                                                                  \
    name : {                                                                                                           \
        const double right = pop();                                                                                    \
        top = (result);                                                                                                \
    }                                                                                                                  \
    K2D_NEXT;                                                                                                          \
    name##Number : {                                                                                                   \
        const double right = step->value;                                                                              \
        top = (result);                                                                                                \
    }                                                                                                                  \
    K2D_NEXT;                                                                                                          \
    name##Variable : {                                                                                                 \
        const double right = read(step);                                                                               \
        top = (result);                                                                                                \
    }                                                                                                                  \
    K2D_NEXT;

    goto* kCode[step->op];
number:
    push(step->value);
    K2D_NEXT;
variable:
    push(read(step));
    K2D_NEXT;
zero:
    push(0.0);
    K2D_NEXT;
unaryFunction:
    top = step->unary(top);
    K2D_NEXT;
ifElse:
    top = operator_if(below[-1], below[0], top), below -= 2;
    K2D_NEXT;
other:
    if (step->operands == 0)
        push(applyUnary(step->code, 0.0));
    else
        top = applyUnary(step->code, top);
    K2D_NEXT;
    K2D_BINARY_STEP(plus, top + right)
    K2D_BINARY_STEP(minus, top - right)
    K2D_BINARY_STEP(mult, top * right)
    K2D_BINARY_STEP(div, top / right)
    K2D_BINARY_STEP(greater, top > right)
    K2D_BINARY_STEP(less, top < right)
    K2D_BINARY_STEP(binaryFunction, step->binary(top, right))
    K2D_BINARY_STEP(binary, applyBinary(step->code, top, right))
done:
#undef K2D_BINARY_STEP
#undef K2D_NEXT
#undef K2D_BINARY_LABELS
    return top;
}

void cleanup(Parser* parser)
{
    stackDelete(parser->output);
    parser->output = nullptr;
    releasePlan(parser);
}
