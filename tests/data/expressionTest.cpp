// The expression engine of the Calculator: the values its language gives, its limits, and a
// comparison with a plain recursive reading of its rules on random texts.
#include "Korel2D.h"
#include "data/expression.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <climits>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <functional>
#include <map>
#include <random>
#include <string>
#include <thread>
#include <vector>

namespace {

struct Compiled {
    std::string text;
    std::map<std::string, double> variables;
    Parser parser{};
    int result;
    std::vector<std::string> asked; // names the callback was asked for
    explicit Compiled(const std::string& text, bool withCallback = true,
                      std::map<std::string, double> values = {{"a", 7}, {"x", 2}, {"nan", NAN}, {"big", 1e10}})
        : text(text), variables(std::move(values))
    {
        parser.text = this->text.c_str();
        result = parse(&parser);
        if (withCallback)
            setVarFunc(&parser, this, [](void* user, Token*, const char* name) {
                auto* self = static_cast<Compiled*>(user);
                self->asked.push_back(name);
                auto found = self->variables.find(name);
                return found == self->variables.end() ? 42.0 : found->second;
            });
    }
    ~Compiled() { cleanup(&parser); }
    double value() { return evaluate(&parser); }
};

TEST(Expression, ValuesOfTheLanguage)
{
    const struct {
        const char* text;
        double expected;
        bool withCallback = true;
    } cases[] = {
        // One precedence per operator code: + binds tighter than -, * than /; all go left to right.
        {"1 - 2 + 3", -4}, {"8 / 2 * 2", 2}, {"1 + 2 - 3", 0}, {"2 * 3 / 4", 1.5}, {"2 + 3 * 4", 14},
        {"(2 + 3) * 4", 20}, {"10 - 2 - 3", 5}, {"3 == 2 < 3", 0}, {"2 != 2 == 2", 1},
        // Operators that land on the output before their operand, or find none.
        {"--3", -3}, {"!!0", 1}, {"!0", 1}, {"a % -3", -3}, {"1 || -1", 0}, {"", 0}, {"(1 + 2", 0}, {"1 + 2)", 3},
        {"3 = 3", 0}, {".5", 0}, {"log10(100)", 100},
        {"x > 0 ? 1 : -1", 1}, {"x < 0 ? 1 : -1", -1}, {"0 ? 2 : 3 ? 4 : 5", 4}, {"nan ? 2 : 3", 2},
        {"1 && 0", 0}, {"nan && 1", 1}, {"nan || 0", 1}, {"!nan", 0}, {"2 <= 2", 1}, {"2 >= 3", 0},
        {"5 ^ 1", 4}, {"6 & 3", 2}, {"6 | 3", 7}, {"~0", -1}, {"7 % 3", 1}, {"(0 - 7) % 3", -1},
        {"sin(PI / 2)", 1}, {"pow(2, 10)", 1024}, {"atan2(1, 1)", std::atan(1.0)}, {"abs(-2.7)", 2}, {"fabs(-2.7)", 2.7},
        {"min(3, 4)", 3}, {"max(3, 4)", 4}, {"int(-2.7)", -2}, {"floor(0 - 2.5)", -3}, {"sqrt 16 + 9", 13},
        {"log(E)", 1}, {"R2D * D2R", 1}, {"1E1", 10}, {"0x1F", 31}, {"E", 2.7182818284}, {"E1", 42}, {"E1", 1, false},
        {"sin", 0}, {"PI2", 42}, {"a", 1, false},
        // Undefined in C, defined here: remainders by 0 and of the lowest integer by -1 read 0;
        // truncation to 32 bits saturates, NaN giving 0.
        {"7 % 0", 0}, {"7 % 0.5", 0}, {"(0 - 2147483648) % (0 - 1)", 0}, {"big % 7", 1}, {"nan % 7", 0},
        {"big | 0", INT_MAX}, {"~nan", -1}, {"int(0 - big)", INT_MIN}, {"abs(0 - big)", 2147483648.0},
    };
    for (const auto& c : cases) {
        Compiled compiled(c.text, c.withCallback);
        EXPECT_NEAR(compiled.value(), c.expected, 1e-9) << '"' << c.text << '"';
    }
}

std::string nested(int levels, const std::string& open, const std::string& middle)
{
    std::string text;
    for (int i = 0; i < levels; ++i)
        text += open;
    return text + middle + std::string(size_t(levels), ')');
}

TEST(Expression, DeepNestingEvaluatesOnAThreadOrIsRefused)
{
    double sum = 0, negated = 0;
    // A default thread stack: nothing in the engine recurses.
    std::thread([&] {
        sum = Compiled(nested(10000, "1+(", "1")).value();
        negated = Compiled(nested(10000, "-(", "1")).value();
    }).join();
    EXPECT_EQ(sum, 10001);
    EXPECT_EQ(negated, 1);

    getLogMsg(nullptr, 0);
    Compiled huge(nested(1000000, "1+(", "1"));
    char log[512];
    getLogMsg(log, sizeof(log));
    EXPECT_EQ(huge.result, -1);
    EXPECT_EQ(huge.value(), 0);
    EXPECT_EQ(std::count(log, log + strlen(log), '\n'), 1) << log;
}

// The rules of the language read literally, with its numbers for the codes: scan, compile with
// two stacks, then walk the output recursively from the top, a missing operand reading 0.0.
namespace literal {

struct T {
    uint32_t code;
    double value;
    uint32_t function;
    std::string name;
};
using Read = std::function<double(const std::string&)>;

std::vector<T> compile(const std::string& s)
{
    static const std::vector<std::pair<std::string, uint32_t>> symbols = {
        {"||", 1002}, {"&&", 1003}, {"==", 1008}, {"!=", 1007}, {">=", 1009}, {"<=", 1011}, {"&", 1006},
        {"|", 1004}, {">", 1010}, {"<", 1012}, {"!", 1019}, {"~", 1020}, {"%", 1015}, {"(", 102}, {")", 103},
        {"*", 1017}, {"+", 1014}, {"/", 1016}, {"^", 1005}, {"?", 1000}, {",", 106}, {":", 1001}, {"-", 1013}};
    static const char* const functions[] = {"sin", "cos", "tan", "log", "abs", "asin", "acos", "atan", "", "sqrt", "exp",
        "ceil", "floor", "", "sinh", "cosh", "tanh", "atan2", "pow", "fabs", "min", "max", "int"}; // from 2000 on
    static const std::vector<std::pair<std::string, T>> words = [] {
        std::vector<std::pair<std::string, T>> w = {{"PI", {100, 3.141592653, 0, ""}}, {"E", {100, 2.7182818284, 0, ""}},
            {"R2D", {100, 57.29577951, 0, ""}}, {"D2R", {100, 1 / 57.29577951, 0, ""}}};
        for (uint32_t f = 0; f < std::size(functions); ++f)
            if (*functions[f])
                w.push_back({functions[f], {1021, 0, 2000 + f, ""}});
        return w;
    }();
    const std::vector<uint32_t> unaryAfter = {104, 102, 106, 1000, 1001, 1007, 1008, 1009, 1010, 1011, 1012,
                                              1013, 1014, 1016, 1017};
    auto wordChar = [](char c) { return isalnum(static_cast<unsigned char>(c)) || c == '_'; };
    std::vector<T> out, ops;
    auto move = [&] { out.push_back(ops.back()); ops.pop_back(); };
    uint32_t previous = 104;
    for (size_t p = 0;;) {
        while (p < s.size() && (s[p] == ' ' || s[p] == '\t' || s[p] == '\n'))
            ++p;
        if (p == s.size())
            break;
        T t{104, 0, 0, ""};
        auto symbol = std::find_if(symbols.begin(), symbols.end(), [&](auto& y) { return s.compare(p, y.first.size(), y.first) == 0; });
        auto word = std::find_if(words.begin(), words.end(), [&](auto& y) {
            return s.compare(p, y.first.size(), y.first) == 0 && !wordChar(s.c_str()[p + y.first.size()]); });
        size_t e = p + 1;
        if (isdigit(static_cast<unsigned char>(s[p]))) {
            char* end;
            t = {100, strtod(s.c_str() + p, &end), 0, ""};
            e = size_t(end - s.c_str());
        } else if (symbol != symbols.end()) {
            t.code = symbol->second == 1013 && std::count(unaryAfter.begin(), unaryAfter.end(), previous) ? 1018 : symbol->second;
            e = p + symbol->first.size();
        } else if (word != words.end()) {
            t = word->second;
            e = p + word->first.size();
        } else if (isalpha(static_cast<unsigned char>(s[p])) || s[p] == '_') {
            for (e = p; e < s.size() && wordChar(s[e]); ++e) {}
            t = {101, 0, 0, s.substr(p, std::min<size_t>(e - p, 255))};
        }
        p = e;
        previous = t.code;
        if (t.code == 100 || t.code == 101)
            out.push_back(t);
        else if (t.code == 102)
            ops.push_back(t);
        else if (t.code == 103) {
            for (; !ops.empty() && ops.back().code != 102; ops.pop_back())
                if (ops.back().code >= 1000)
                    out.push_back(ops.back());
            if (!ops.empty())
                ops.pop_back();
        } else {
            // A comma moves every operator out, ? and : all but a ?, the others those of their code
            // or above; a : is not kept.
            const uint32_t above = t.code == 106 ? 1000 : t.code == 1000 || t.code == 1001 ? 1002 : std::max(t.code, 1000u);
            while (!ops.empty() && ops.back().code >= above)
                move();
            if (t.code != 1001)
                ops.push_back(t);
        }
    }
    for (; !ops.empty(); ops.pop_back())
        if (ops.back().code != 106 && ops.back().code != 1001)
            out.push_back(ops.back());
    return out;
}

double pop(const std::vector<T>& out, size_t& i, const Read& read)
{
    static const std::pair<uint32_t, double (*)(double)> plain[] = {
        {2000, sin}, {2001, cos}, {2002, tan}, {2003, log}, {2005, asin}, {2006, acos}, {2007, atan}, {2009, sqrt},
        {2010, exp}, {2011, ceil}, {2012, floor}, {2014, sinh}, {2015, cosh}, {2016, tanh}, {2019, fabs}};
    if (i == 0)
        return 0.0;
    const T& t = out[--i];
    const uint32_t c = t.code, f = t.function;
    if (c == 100 || c == 101)
        return c == 100 ? t.value : read ? read(t.name) : 1.0;
    if (c < 1000 || c == 1001)
        return 0.0;
    const bool two = (c >= 1002 && c <= 1017) || c == 1000 || (c == 1021 && (f == 2017 || f == 2018 || f == 2020 || f == 2021));
    const double z = c == 1000 ? pop(out, i, read) : 0, b = two ? pop(out, i, read) : 0, a = pop(out, i, read);
    auto int32 = [](double d) { return d != d ? 0 : d <= INT32_MIN ? INT32_MIN : d >= INT32_MAX ? INT32_MAX : int32_t(d); };
    const int32_t x = int32(a), y = int32(b);
    for (const auto& g : plain)
        if (c == 1021 && f == g.first)
            return g.second(a);
    switch (c == 1021 ? f : c) {
    case 1000: return a != 0 ? b : z; case 1002: return a != 0 || b != 0; case 1003: return a != 0 && b != 0;
    case 1004: return x | y; case 1005: return x ^ y; case 1006: return x & y; case 1007: return a != b;
    case 1008: return a == b; case 1009: return a >= b; case 1010: return a > b; case 1011: return a <= b;
    case 1012: return a < b; case 1013: return a - b; case 1014: return a + b;
    case 1015: return y == 0 || (x == INT32_MIN && y == -1) ? 0 : x % y; case 1016: return a / b;
    case 1017: return a * b; case 1018: return -a; case 1019: return a == 0; case 1020: return ~x;
    case 2004: return std::llabs(x); case 2017: return atan2(a, b); case 2018: return pow(a, b);
    case 2020: return std::min(a, b); case 2021: return std::max(a, b); case 2022: return x;
    }
    return 0.0;
}

} // namespace literal

TEST(Expression, RandomTextsMatchTheLiteralRules)
{
    const std::vector<std::string> pieces = {
        "1", "2", "0", "2.5", "1E1", "0x1F", "1e400", "a", "b", "c", "E", "E1", "PI", "log10", "_v", "(", ")", ",", "?",
        ":", "-", "+", "*", "/", "%", "^", "|", "||", "&", "&&", "!", "!=", "==", "=", "<", "<=", ">", ">=", "~", ".",
        "#", "\t", "sin", "pow", "atan2", "abs", "int", "min", "max", "fabs", "sqrt", "log", "floor",
        std::string(300, 'v')}; // a name cut to its first 255 characters
    const std::map<std::string, double> values = {{"a", 3}, {"b", -2.5}, {"c", NAN}, {"log10", 1e10}};
    std::mt19937 random(13);
    for (int n = 0; n < 100000; ++n) {
        std::string text;
        for (int length = int(random() % 16); length > 0; --length)
            text += pieces[random() % pieces.size()] + (random() % 4 ? " " : "");
        const bool withCallback = n % 2;
        Compiled compiled(text, withCallback, values);
        std::vector<std::string> literalAsked;
        auto read = [&](const std::string& name) {
            literalAsked.push_back(name);
            return values.count(name) ? values.at(name) : 42.0;
        };
        const auto out = literal::compile(text);
        size_t top = out.size();
        const double expected = literal::pop(out, top, withCallback ? read : literal::Read());
        const double got = compiled.value();
        ASSERT_TRUE(got == expected || (std::isnan(got) && std::isnan(expected))) << '"' << text << "\": " << got << " vs " << expected;
        std::sort(compiled.asked.begin(), compiled.asked.end());
        std::sort(literalAsked.begin(), literalAsked.end());
        ASSERT_EQ(compiled.asked, literalAsked) << text;
    }
}

} // namespace
