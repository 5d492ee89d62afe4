// What the library logged since it was last asked, without its closing line feeds. At its
// default level it keeps errors only.
#pragma once

#include "Korel2D.h"

#include <string>

inline std::string takeLibraryLog()
{
    char log[4096];
    getLogMsg(log, sizeof log);
    std::string text = log;
    while (!text.empty() && text.back() == '\n')
        text.pop_back();
    return text;
}
