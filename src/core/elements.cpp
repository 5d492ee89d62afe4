// Element records and the operations on element lists.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "edit/handles.h"
#include "elements/elementKinds.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

// Process-wide, as generated names must not repeat while elements are created on the loading thread.
static int nameCounter = 0;

ELEMENT_STRUCT* elementCreate(uint32_t type)
{
    ELEMENT_STRUCT* element = static_cast<ELEMENT_STRUCT*>(calloc(1, sizeof(ELEMENT_STRUCT)));
    if (!element) {
        logMsg(1, "elementCreate: out of memory\n");
        return nullptr;
    }
    element->type = type == KR_TEXT_OLD ? uint32_t(KR_TEXT) : type;
    elementNewName(element, nullptr);
    if (const KindInfo* kind = kindInfo(element->type)) {
        if (kind->createData) {
            element->data = kind->createData();
            if (!element->data) {
                free(element);
                return nullptr;
            }
        }
        element->setPickSticky = kind->setPickSticky;
        element->edit = kind->edit;
        element->pick = kind->pick;
    }
    return element;
}

int elementAppend(ELEMENT_STRUCT* element, ELEMENT_STRUCT** head)
{
    if (element && head)
        appendNode(head, element);
    return 0;
}

int elementDelete(ELEMENT_STRUCT* element, ELEMENT_STRUCT** head)
{
    if (!head || !*head || !element)
        return 0;
    unlinkNode(head, element);
    while (element->child)
        elementDelete(element->child, &element->child);
    while (element->actions)
        delAction(&element->actions, element->actions);
    const KindInfo* kind = kindInfo(element->type);
    if (kind && kind->freeData && element->data)
        kind->freeData(element->data);
    // An edit begun and never ended still holds its saved copy.
    releaseEditData(element);
    deleteStickies(element);
    free(element->data);
    free(element);
    return 0;
}

int elementDeleteAll(ELEMENT_STRUCT** head)
{
    while (head && *head)
        elementDelete(*head, head);
    return 0;
}

static const char* namePrefix(uint32_t type)
{
    const KindInfo* kind = kindInfo(type);
    return kind ? kind->prefix : "";
}

int elementNewName(ELEMENT_STRUCT* element, ELEMENT_STRUCT* list)
{
    char name[128];
    const char* prefix = namePrefix(element->type);
    snprintf(name, sizeof name, "%s-%04d", prefix, nameCounter);
    // The counter moves only on a collision, so a free name doesn't use it up.
    while (elementCheckName(list, name)) {
        ++nameCounter;
        snprintf(name, sizeof name, "%s-%04d", prefix, nameCounter);
    }
    snprintf(element->name, sizeof element->name, "%.63s", name);
    snprintf(element->id, sizeof element->id, "%s-ID", element->name);
    return 0;
}

int elementCheckName(ELEMENT_STRUCT* list, const char* name)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (strcmp(e->name, name) == 0)
            return 1;
        if (e->type == KR_GROUP && elementCheckName(e->child, name))
            return 1;
    }
    return 0;
}

int setElementAttr(ELEMENT_STRUCT* list)
{
    for (ELEMENT_STRUCT* e = list; e; e = e->next) {
        if (e->type == KR_GROUP)
            setElementAttr(e->child);
        if (e->setPickSticky)
            e->setPickSticky(e);
    }
    return 0;
}
