// The page and the lists of a view as a file reader gives them, freed with this: for tools that
// read and write files without running the view.
#pragma once

#include "KorelEdit.h"

struct StoredLists {
    VIEW_STRUCT view = {};
    StoredLists() = default;
    StoredLists(const StoredLists&) = delete;
    StoredLists& operator=(const StoredLists&) = delete;
    ~StoredLists()
    {
        elementDeleteAll(&view.elements);
        while (view.dataTypes)
            delDataType(&view.dataTypes, view.dataTypes, 0);
    }
};
