// The file-level state of the XML readers and writers (see viewXml.h).
#include "xml/viewXml.h"

XmlReadTables xmlRead;
XmlWriteTables xmlWrite;
std::mutex xmlFileLock;
