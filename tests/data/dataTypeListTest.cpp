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
    for (DD_DATA_TYPE_STRUCT*& source : sources) {
        source = createDataType(10);
        ASSERT_NE(source, nullptr);
        appendDataType(&head, source);
    }
    ASSERT_EQ(head, sources[0]);
    EXPECT_EQ(sources[2]->prev, sources[1]);

    // A source owns its variables, including text buffers that have grown, and its
    // descriptions with their item lists.
    DD_DATA_TYPE_STRUCT* middle = sources[1];
    for (int i = 0; i < 2; ++i) {
        VARIABLE_STRUCT* v = createVariable(10);
        v->para[0].sval = static_cast<char*>(realloc(v->para[0].sval, 200));
        v->para[0].size = 200;
        appendVariable(&middle->variables, v);
    }
    EXPECT_EQ(middle->variables->next->prev, middle->variables);
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

TEST(DataTypeLists, VariablesLeaveTheirListInStep)
{
    VARIABLE_STRUCT* head = nullptr;
    VARIABLE_STRUCT* a = createVariable(1);
    VARIABLE_STRUCT* b = createVariable(1);
    VARIABLE_STRUCT* c = createVariable(1);
    for (VARIABLE_STRUCT* v : {a, b, c})
        appendVariable(&head, v);
    b->nrPara = 0; // fewer in use than made
    delVariable(&head, b);
    EXPECT_EQ(a->next, c);
    EXPECT_EQ(c->prev, a);
    delVariable(&head, a);
    EXPECT_EQ(head, c);
    EXPECT_EQ(delVariable(&head, nullptr), 0);
    appendVariable(&head, nullptr);
    EXPECT_EQ(head->next, nullptr);
    delVariable(&head, c);
    EXPECT_EQ(head, nullptr);
}

} // namespace
