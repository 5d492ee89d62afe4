#include "SymbolView.h"

#include "LibraryLog.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace korelgen {

bool isSymbolFile(const std::string& path)
{
    FILE* file = std::fopen(path.c_str(), "rb");
    if (!file)
        return false;
    char head[kSymbolHeadBytes];
    const size_t n = std::fread(head, 1, sizeof head, file);
    std::fclose(file);
    if (std::memchr(head, '\0', n))
        return false;
    static const char kKeyword[] = "SYMBOL-NR.";
    // A byte-order mark of UTF-8 only before the first line.
    size_t at = n >= 3 && std::memcmp(head, "\xEF\xBB\xBF", 3) == 0 ? 3 : 0;
    while (at < n) {
        while (at < n && (head[at] == ' ' || head[at] == '\t'))
            ++at;
        if (n - at >= sizeof kKeyword - 1 && std::memcmp(head + at, kKeyword, sizeof kKeyword - 1) == 0)
            return true;
        const void* end = std::memchr(head + at, '\n', n - at);
        at = end ? size_t(static_cast<const char*>(end) - head) + 1 : n;
    }
    return false;
}

bool loadSymbolView(const std::string& path, VIEW_STRUCT* view, std::string* reason)
{
    takeLibraryLog(); // so that a failure's reason is this load's own
    if (loadSymbolFile(path.c_str(), &view->elements) != 0) {
        *reason = takeLibraryLog();
        return false;
    }
    // Each group's bounds are the union of its shapes' after the import's geometry pass; an
    // empty group's are a point at the origin, which is no place of the symbols.
    float box[4] = {0, 0, 0, 0};
    bool found = false;
    for (const ELEMENT_STRUCT* group = view->elements; group; group = group->next) {
        if (!group->child)
            continue;
        const float* b = group->bounds;
        if (!found)
            std::copy(b, b + 4, box);
        box[0] = std::min(box[0], b[0]), box[1] = std::min(box[1], b[1]);
        box[2] = std::max(box[2], b[2]), box[3] = std::max(box[3], b[3]);
        found = true;
    }
    if (!found) {
        *reason = "no symbol in it has a shape";
        return false;
    }
    view->x = box[0] - kSymbolPageMargin;
    view->y = box[1] - kSymbolPageMargin;
    view->width = box[2] - box[0] + 2 * kSymbolPageMargin;
    view->height = box[3] - box[1] + 2 * kSymbolPageMargin;
    std::fill(view->pageColor, view->pageColor + 3, 1.0f);
    return true;
}

} // namespace korelgen
