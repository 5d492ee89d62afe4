// A symbol library as a view, for the tools that take one wherever they take a view file: its
// symbols, each a group, on a white page of their box grown by a margin.
#pragma once

#include "KorelEdit.h"

#include <string>

namespace korelgen {

// Room left around the symbols on every side of the page, in view units.
constexpr float kSymbolPageMargin = 10;
// How far into a file the keyword of a symbol is looked for.
constexpr size_t kSymbolHeadBytes = 4096;

// A symbol file is text (no NUL byte in its first kSymbolHeadBytes) in which one of those bytes'
// lines begins, after blanks, with the keyword "SYMBOL-NR.". False for a file that can't be read.
bool isSymbolFile(const std::string& path);

// Fills the empty `view` with the groups of the symbol file and a white page that covers their
// boxes, kSymbolPageMargin beyond them on every side. Symbols without a shape take no room.
// False, with the reason, when the file can't be read or no symbol in it has a shape.
bool loadSymbolView(const std::string& path, VIEW_STRUCT* view, std::string* reason);

} // namespace korelgen
