// Elements in XML view files. The element and action vocabulary is not written yet: the
// geometry section is made and walked, and holds nothing.
#include "xml/viewXml.h"

void elementSaveXml(ELEMENT_STRUCT*, XmlElement&) {}

ELEMENT_STRUCT* elementLoadXml(const XmlElement&, ELEMENT_STRUCT**)
{
    return nullptr;
}
