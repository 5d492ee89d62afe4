// The Calculator's expression engine against muparser on one expression of four variables:
// arithmetic, a comparison, a conditional and functions, fully parenthesised so that both read
// it the same way. Each compiles it once; every evaluation sees new values of the variables,
// ours through its variable callback, muparser's through the doubles it was given. Before any
// timing both must agree on a few hundred random values. The summary prints nanoseconds per
// evaluation of both and their ratio.
#include "benchCommon.h"
#include "data/expression.h"

#include <benchmark/benchmark.h>
#include <muParser.h>

#include <array>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <string>
#include <vector>

namespace {

using korelbench::Lcg;

// No ^ (ours is exclusive or) and no abs (ours truncates to 32 bits first): both engines
// share the meaning of everything else here. The functions stand outside the conditional:
// muparser evaluates only the branch taken, while ours, whose callback must see every variable
// of both, evaluates both; a function in a branch would time that difference, not the engines.
constexpr const char* kExpression =
    "(((sin(a) * 2.5) + (b / (c + 1))) > (sqrt(c * c) - max(a, d))) ? ((a * 4) - b) : ((d / 2) + c)";
constexpr const char* kNames[] = {"a", "b", "c", "d"};
constexpr int kVariables = 4;
constexpr int kBatch = 1000;      // evaluations per benchmark iteration
constexpr int kSets = 1024;       // distinct variable values, taken in turns
constexpr int kAgreementSets = 500;
constexpr double kAgreement = 1e-12;

using Values = std::array<double, kVariables>;

// a and b from -5 to 5, so that the condition goes both ways; c from 0 to 4, never -1.
std::vector<Values> randomValues(int count)
{
    Lcg random;
    std::vector<Values> sets(static_cast<size_t>(count));
    for (Values& v : sets) {
        v[0] = 10.0 * random.unit() - 5.0;
        v[1] = 10.0 * random.unit() - 5.0;
        v[2] = 4.0 * random.unit();
        v[3] = 6.0 * random.unit() - 3.0;
    }
    return sets;
}

// Our engine with the variables as a host would keep them: the callback looks a name up once
// and leaves the address in the token's cache.
class OurEngine {
public:
    OurEngine()
    {
        parser_.text = kExpression;
        ok_ = parse(&parser_) == 0;
        setVarFunc(&parser_, this, readVariable);
    }
    ~OurEngine() { cleanup(&parser_); }
    OurEngine(const OurEngine&) = delete;
    OurEngine& operator=(const OurEngine&) = delete;

    bool ok() const { return ok_; }
    double operator()(const Values& v)
    {
        values_ = v;
        return evaluate(&parser_);
    }

private:
    static double readVariable(void* user, Token* token, const char* name)
    {
        if (!token->cache) {
            OurEngine* self = static_cast<OurEngine*>(user);
            for (int i = 0; i < kVariables; ++i)
                if (std::strcmp(name, kNames[i]) == 0)
                    token->cache = &self->values_[size_t(i)];
            if (!token->cache)
                return 0.0;
        }
        return *static_cast<const double*>(token->cache);
    }

    Parser parser_{};
    Values values_{};
    bool ok_ = false;
};

class Muparser {
public:
    Muparser()
    {
        try {
            for (int i = 0; i < kVariables; ++i)
                parser_.DefineVar(kNames[i], &values_[size_t(i)]);
            parser_.SetExpr(kExpression);
            parser_.Eval(); // compiles
            ok_ = true;
        } catch (const mu::Parser::exception_type& e) {
            std::fprintf(stderr, "korel2d_bench_expression: muparser: %s\n", e.GetMsg().c_str());
        }
    }

    bool ok() const { return ok_; }
    double operator()(const Values& v)
    {
        values_ = v;
        return parser_.Eval();
    }

private:
    mu::Parser parser_;
    Values values_{};
    bool ok_ = false;
};

// The first value set on which the engines differ by more than kAgreement of the larger
// magnitude, or -1.
template <class A, class B> int firstDisagreement(A& ours, B& theirs, const std::vector<Values>& sets)
{
    for (size_t i = 0; i < sets.size(); ++i) {
        const double x = ours(sets[i]), y = theirs(sets[i]);
        if (!(std::fabs(x - y) <= kAgreement * std::fmax(std::fabs(x), std::fabs(y))))
            return int(i);
    }
    return -1;
}

template <class Engine> void evaluateBatches(benchmark::State& state, Engine* engine, const std::vector<Values>* sets)
{
    size_t next = 0;
    for (auto _ : state) {
        double sum = 0;
        for (int i = 0; i < kBatch; ++i) {
            sum += (*engine)((*sets)[next]);
            next = (next + 1) % sets->size();
        }
        benchmark::DoNotOptimize(sum);
    }
    state.SetItemsProcessed(int64_t(state.iterations()) * kBatch);
}

void BM_ExpressionOurs(benchmark::State& state, OurEngine* engine, const std::vector<Values>* sets)
{
    evaluateBatches(state, engine, sets);
    state.SetLabel("reference BM_ExpressionMuparser");
}

void BM_ExpressionMuparser(benchmark::State& state, Muparser* engine, const std::vector<Values>* sets)
{
    evaluateBatches(state, engine, sets);
}

} // namespace

int main(int argc, char** argv)
{
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 1;
    OurEngine ours;
    Muparser theirs;
    if (!ours.ok() || !theirs.ok()) {
        std::fprintf(stderr, "korel2d_bench_expression: an engine cannot compile %s\n", kExpression);
        return 1;
    }
    const std::vector<Values> check = randomValues(kAgreementSets);
    const int differs = firstDisagreement(ours, theirs, check);
    if (differs >= 0) {
        const Values& v = check[size_t(differs)];
        std::fprintf(stderr,
                     "korel2d_bench_expression: the engines disagree at a=%.17g b=%.17g c=%.17g d=%.17g: "
                     "ours %.17g, muparser %.17g\n",
                     v[0], v[1], v[2], v[3], ours(v), theirs(v));
        return 1;
    }
    std::printf("%s\nboth engines agree on %d random value sets; %d evaluations per iteration\n", kExpression,
                kAgreementSets, kBatch);

    const std::vector<Values> sets = randomValues(kSets);
    benchmark::RegisterBenchmark("BM_ExpressionOurs", BM_ExpressionOurs, &ours, &sets)
        ->Unit(benchmark::kMicrosecond)->UseRealTime();
    benchmark::RegisterBenchmark("BM_ExpressionMuparser", BM_ExpressionMuparser, &theirs, &sets)
        ->Unit(benchmark::kMicrosecond)->UseRealTime();
    korelbench::SummaryReporter reporter;
    benchmark::RunSpecifiedBenchmarks(&reporter);
    benchmark::Shutdown();

    auto& s = reporter.seconds;
    if (s.count("BM_ExpressionOurs") && s.count("BM_ExpressionMuparser"))
        std::printf("per evaluation: %.1f ns ours, %.1f ns muparser\n", s["BM_ExpressionOurs"] * 1e9 / kBatch,
                    s["BM_ExpressionMuparser"] * 1e9 / kBatch);
    reporter.printRatio("BM_ExpressionOurs", "BM_ExpressionMuparser", "ours/muparser");
    return 0;
}
