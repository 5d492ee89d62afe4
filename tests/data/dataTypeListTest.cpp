// Source and variable lists: order kept through appends and deletes, and everything a record
// owns given back with it (the sanitizer build proves the frees).
#include "KorelEdit.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

TEST(DataTypeLists, AppendAndDeleteKeepTheOrder)
{
    DD_DATA_TYPE_STRUCT* head = nullptr;
    DD_DATA_TYPE_STRUCT* sources[3];
    for (DD_DATA_TYPE_STRUCT*& source : sources)
        appendDataType(&head, source = createDataType(10));

    // A source owns its variables, among them a text buffer that has grown and one with fewer
    // parameters in use than made, and its descriptions with their item lists.
    DD_DATA_TYPE_STRUCT* middle = sources[1];
    VARIABLE_STRUCT* variables[3];
    for (VARIABLE_STRUCT*& variable : variables)
        appendVariable(&middle->variables, variable = createVariable(10));
    variables[0]->para[0].sval = static_cast<char*>(realloc(variables[0]->para[0].sval, 200));
    variables[0]->para[0].size = 200;
    variables[1]->nrPara = 0;
    delVariable(&middle->variables, variables[1]);
    EXPECT_EQ(variables[0]->next, variables[2]);
    EXPECT_EQ(variables[2]->prev, variables[0]);
    middle->nrVar = 1;
    middle->varOptions = static_cast<OPTION_STRUCT*>(calloc(1, sizeof(OPTION_STRUCT)));
    middle->varOptions[0].count = 2;
    middle->varOptions[0].items = static_cast<char*>(calloc(2, 32));
    delDataType(&head, middle, 1);
    EXPECT_EQ(head->next, sources[2]);
    EXPECT_EQ(sources[2]->prev, head);

    // The file's counts may be below the slots a record has: all slots still go.
    head->nrData = 2;
    delDataType(&head, head, 0);
    EXPECT_EQ(head, sources[2]);
    EXPECT_EQ(delDataType(&head, nullptr, 0), 0);
    delDataType(&head, head, 0);
    EXPECT_EQ(head, nullptr);
    delDataType(nullptr, createDataType(0), 1); // a record without slots
}

} // namespace
