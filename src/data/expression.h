// The expression engine of the Calculator source: a text over named variables is compiled once
// into a postfix token stack, then evaluated as often as wanted in doubles, with a callback for
// the variables. The names are generic; the library keeps them hidden, so a host may have its own.
//
// Precedence is the numeric order of the operator codes (a higher code binds tighter, equal
// codes associate to the left), so a - b + c is a - (b + c) and a / b * c is a / (b * c).
// Nothing fails: a missing operand reads 0.0 and a character the language lacks makes a token
// that evaluates to 0.0.
#pragma once

#include <cstdint>

enum TokenCode : uint32_t {
    TOKEN_NUMBER = 100, // a number or a constant word
    TOKEN_VARIABLE,     // an identifier: the callback's value
    TOKEN_OPEN,
    TOKEN_CLOSE,
    TOKEN_NONE,         // any character the language lacks; also "no token yet"
    TOKEN_DONE,         // end of the text
    TOKEN_COMMA,
    // Operators, from the loosest to the tightest binding.
    TOKEN_IF = 1000,    // a ? b : c
    TOKEN_IF_THEN,      // the colon, never compiled
    TOKEN_LOG_OR,
    TOKEN_LOG_AND,
    TOKEN_BIT_OR,
    TOKEN_BIT_EXCL,     // ^ is exclusive or, not a power
    TOKEN_BIT_AND,
    TOKEN_NOT_EQUAL,
    TOKEN_EQUAL,
    TOKEN_GREATER_EQUAL,
    TOKEN_GREATER,
    TOKEN_LESS_EQUAL,
    TOKEN_LESS,
    TOKEN_MINUS,
    TOKEN_PLUS,
    TOKEN_MOD,
    TOKEN_DIV,
    TOKEN_MULT,
    TOKEN_NEGATE,
    TOKEN_LOG_NOT,
    TOKEN_BIT_NOT,
    TOKEN_FUNCTION,     // its operand is a prefix; two arguments come from a comma list
};

enum FunctionCode : uint32_t {
    FUNCTION_SIN = 2000,
    FUNCTION_COS,
    FUNCTION_TAN,
    FUNCTION_LOG,
    FUNCTION_ABS,   // of the argument truncated to 32 bits
    FUNCTION_ASIN,
    FUNCTION_ACOS,
    FUNCTION_ATAN,
    FUNCTION_SQRT = 2009,
    FUNCTION_EXP,
    FUNCTION_CEIL,
    FUNCTION_FLOOR,
    FUNCTION_SINH = 2014,
    FUNCTION_COSH,
    FUNCTION_TANH,
    FUNCTION_ATAN2, // y, x
    FUNCTION_POW,   // base, exponent
    FUNCTION_FABS,
    FUNCTION_MIN,
    FUNCTION_MAX,
    FUNCTION_FINT,  // truncation to 32 bits
};

constexpr int kTokenNameSize = 256;
// A longer text is refused by parse: its stacks would take hundreds of megabytes.
constexpr int kExpressionMaxTokens = 100000;

struct Token {
    uint32_t code;
    double value;              // of a number
    uint32_t function;         // of a function token
    char name[kTokenNameSize]; // of a variable: its first 255 characters
    void* cache;               // the variable callback's own; null after scanning
};

struct TokenStack {
    int count;
    int shadow;                // second read position: walks the stack without changing it
    int capacity;
    Token* items;
};

// (user, the variable's token, its name) -> value.
typedef double (*ReadVariableFunc)(void* user, Token* token, const char* name);

struct Parser {
    int position;              // of the next character to scan
    const char* text;          // the caller's, alive until cleanup
    Token token;               // the current token; at the next scan the previous one
    void* user;
    ReadVariableFunc readVariable;
    TokenStack* operators;     // only while parsing
    TokenStack* output;        // the compiled expression, in postfix order
    // The evaluation plan, made by parse from the output: the steps in order, with the value
    // stack they need.
    struct Step* steps;
    int stepCount;
    double* values;
};

// Compiles `text`; clears the callback. 0, or -1 when the text has more than
// kExpressionMaxTokens tokens: it is refused with one line in the log and evaluates to 0.0.
int parse(Parser* parser);
void setVarFunc(Parser* parser, void* user, ReadVariableFunc function);
// Any number of times; allocates nothing. Without a callback a variable reads 1.0.
double evaluate(Parser* parser);
// Gives back what parse made; the record itself is the caller's.
void cleanup(Parser* parser);

// The next token, into parser->token; its code.
uint32_t scanner(Parser* parser);
// 0 if text begins with the n characters of word and no letter, digit or underscore follows.
int checkWord(const char* text, const char* word, int n);
// Names for printing; getToken's text lives in one static buffer.
const char* getToken(const Token* token);
const char* getFunction(uint32_t code);
// A zero a selects c, anything else (NaN too) b.
double operator_if(double a, double b, double c);

TokenStack* stackCreate();
void stackDelete(TokenStack* stack);
// 0, or -1 when memory runs out.
int stackPush(TokenStack* stack, const Token* token);
// The removed token, valid until the next push, or null.
Token* stackPop(TokenStack* stack);
Token* stackTop(TokenStack* stack);
// The next token going down from the shadow position, or null.
Token* stackPopShadow(TokenStack* stack);
void stackReset(TokenStack* stack);
// getToken of each token, bottom to top, one per line on standard output.
void stackPrint(const TokenStack* stack);
