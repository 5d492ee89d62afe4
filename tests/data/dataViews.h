// Views holding only data sources, and what a host reads from them by name, shared by the
// tests of sources and run modes.
#pragma once

#include "Korel2D.h"
#include "ViewFixture.h"

#include <chrono>
#include <cmath>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

namespace k2dtest {

inline korelgen::ViewBuilder viewWith(const std::vector<korelgen::SourceFields>& sources)
{
    return blackPage().dataSection(sources);
}

// What krVarGetStr prints, or its result code in angle brackets where that isn't 0.
inline std::string read(VIEW_STRUCT* view, const std::string& name)
{
    char text[256] = "unchanged";
    int result = krVarGetStr(view, name.c_str(), text);
    return result == 0 ? std::string(text) : "<" + std::to_string(result) + ">";
}

// The same as a number; NaN where it can't be read.
inline double number(VIEW_STRUCT* view, const std::string& name)
{
    const std::string text = read(view, name);
    return text[0] == '<' ? std::nan("") : strtod(text.c_str(), nullptr);
}

// Polls another thread's progress; false if `done` didn't come within ten seconds.
template <class Done> bool waitFor(Done done)
{
    const auto end = std::chrono::steady_clock::now() + std::chrono::seconds(10);
    while (!done() && std::chrono::steady_clock::now() < end)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
    return done();
}

} // namespace k2dtest
