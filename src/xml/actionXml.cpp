// Actions in XML view files. The vocabulary is not written yet: elements carry none.
#include "xml/viewXml.h"

void actionSaveXml(const ACTION_STRUCT*, XmlElement&) {}

int actionLoadXml(const XmlElement&, ACTION_STRUCT**)
{
    return 0;
}
