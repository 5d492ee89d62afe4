// A view loaded from bytes in memory for the length of a test, and counts of what it holds.
#pragma once

#include "Korel2D.h"
#include "ViewBuilder.h"

#include <cstdint>
#include <vector>

namespace k2dtest {

struct LoadedView {
    VIEW_STRUCT* view;
    explicit LoadedView(const std::vector<uint8_t>& bytes) : view(krViewLoadData(bytes.data(), bytes.size())) {}
    explicit LoadedView(const korelgen::ViewBuilder& b) : LoadedView(b.bytes()) {}
    ~LoadedView() { krViewFree(view); }
    LoadedView(const LoadedView&) = delete;
    LoadedView& operator=(const LoadedView&) = delete;
    ELEMENT_STRUCT* first() const { return view ? view->elements : nullptr; }
};

template <class Record> int countList(const Record* head)
{
    int n = 0;
    for (; head; head = head->next)
        ++n;
    return n;
}

// Every element of the tree, groups and their children alike.
inline int countElements(const ELEMENT_STRUCT* list)
{
    int n = 0;
    for (const ELEMENT_STRUCT* e = list; e; e = e->next)
        n += 1 + (e->type == KR_GROUP ? countElements(e->child) : 0);
    return n;
}

// The actions of every element of the tree.
inline int countActions(const ELEMENT_STRUCT* list)
{
    int n = 0;
    for (const ELEMENT_STRUCT* e = list; e; e = e->next)
        n += countList(e->actions) + countActions(e->child);
    return n;
}

} // namespace k2dtest
