// An edit of a group reaches its children, nested groups included, with the group's own
// handles and arguments, and leaves the group's box fitted to what the children became.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"

#include <string>
#include <vector>

using namespace k2dtest;

namespace {

// The arguments the group is edited with; the handles are only handed on, never looked into.
std::vector<std::string> edited;
STICKY_STRUCT* const kHandles = reinterpret_cast<STICKY_STRUCT*>(&edited);
float shift = 100;

// Stands in for a rectangle's edit: records who was edited with the group's arguments and moves
// the rectangle right by the float the value points at, re-deriving its geometry as a real edit does.
int recordingEdit(ELEMENT_STRUCT* element, STICKY_STRUCT* stickies, int code, int phase, void* value)
{
    const bool sameArguments = stickies == kHandles && code == 5 && phase == 2 && value == &shift;
    edited.push_back(element->name + std::string(sameArguments ? "" : " with other arguments"));
    for (float& x : static_cast<RECT_STRUCT*>(element->data)->cornerX)
        x += *static_cast<float*>(value);
    rectSetPickSticky(element);
    return 0;
}

TEST(GroupEdit, ChildrenGetTheGroupsArgumentsInOrderAndTheBoxFollows)
{
    ViewBuilder b = blackPage();
    b.beginGroup(3, "outer").rect({0, 0, 10, 10}, "first");
    b.beginGroup(2, "inner").rect({20, 50, 30, 60}, "second").rect({40, 0, 50, 10}, "third").endGroup();
    LoadedView loaded(b.rect({60, 20, 70, 30}, "fixed").endGroup());
    ELEMENT_STRUCT* outer = loaded.first();
    ELEMENT_STRUCT* inner = outer->child->next;
    // Every loaded group edits this way; for "fixed" an end without a begin changes nothing.
    ASSERT_TRUE(outer->edit == editGroup && inner->edit == editGroup && inner->next->edit == editRect);
    outer->child->edit = inner->child->edit = inner->child->next->edit = recordingEdit;
    EXPECT_EQ(outer->edit(outer, kHandles, 5, 2, &shift), 0);
    EXPECT_EQ(edited, (std::vector<std::string>{"first", "second", "third"}));

    // Both boxes take in the moved squares; the unmoved one still bounds the outer box below.
    EXPECT_EQ(std::vector<float>(inner->bounds, inner->bounds + 4), (std::vector<float>{120, 0, 150, 60}));
    EXPECT_EQ(std::vector<float>(outer->bounds, outer->bounds + 4), (std::vector<float>{60, 0, 150, 60}));
    EXPECT_FLOAT_EQ(outer->x, 105);
    EXPECT_FLOAT_EQ(outer->y, 30);
    // Children stay relative to their group's new centre.
    EXPECT_FLOAT_EQ(inner->x, 135 - 105);
    EXPECT_FLOAT_EQ(inner->child->x, 125 - 135);
}

} // namespace
