// The XML view files: one vocabulary of typed attributes over TinyXML. Every value is read and
// written through the operation named for its type, so each type has exactly one form in a file.
// Nothing above this layer touches TinyXML beyond the element pointer a handle carries.
#pragma once

#include "Korel2D.h"
#include "base/planeMath.h"

#include <clocale>
#include <locale.h>
#include <string>
#include <tinyxml.h>

// A handle of one element, copied by value; it owns nothing. The null handle means "no such
// element" and is how iteration ends. An element made from a name belongs to its document once
// appended; one never appended stays allocated.
class XmlElement {
public:
    explicit XmlElement(const char* name) : element_(new TiXmlElement(name)) {}
    XmlElement(TiXmlElement* element = nullptr) : element_(element) {}

    // On the null handle these give "" and the null handle, so a walk of a document that
    // failed to load simply finds nothing.
    std::string name() const { return element_ ? element_->ValueStr() : std::string(); }
    bool valid() const { return element_ != nullptr; }
    XmlElement firstElement() const { return element_ ? element_->FirstChildElement() : nullptr; }
    XmlElement nextElement() const { return element_ ? element_->NextSiblingElement() : nullptr; }
    TiXmlElement* data() const { return element_; }
    // The tree takes ownership of the child.
    void appendElement(XmlElement& child) { element_->LinkEndChild(child.element_); }

    // Setting an attribute the element has replaces its value in place, keeping the order of
    // the attributes. A `get` of a missing or unreadable attribute gives the type's default.
    void setAttributeString(const char* name, const std::string& value);
    std::string getAttributeString(const char* name) const; // default ""
    void setAttributeInt(const char* name, int value);
    // Decimal, 0x hexadecimal or 0 octal, up to the first unusable character; default 0.
    int getAttributeInt(const char* name) const;
    // "0x" and the value as unsigned hexadecimal; getAttributeInt reads it back.
    void setAttributeHex(const char* name, int value);
    // Six significant digits, as a default output stream writes them; default 0.0.
    void setAttributeDouble(const char* name, double value);
    double getAttributeDouble(const char* name) const;
    // "true" or "false"; only the exact text "true" reads as true.
    void setAttributeBool(const char* name, bool value);
    bool getAttributeBool(const char* name) const;
    // "#rrggbbaa" or "none"; default opaque white, not none. The first character isn't looked
    // at, and pairs missing from a short text read as 0.
    void setAttributeColor(const char* name, const Color& value);
    Color getAttributeColor(const char* name) const;
    // The affine part as six numbers in the order m00 m10 m01 m11 m02 m12; default the identity.
    void setAttributeMatrix(const char* name, const Matrix2<double>& value);
    Matrix2<double> getAttributeMatrix(const char* name) const;
    // A KR_POS_ word as one of nine names; anything unknown is the centre.
    void setAttributePosition(const char* name, int value);
    int getAttributePosition(const char* name) const;

private:
    const char* text(const char* name) const { return element_ ? element_->Attribute(name) : nullptr; }

    TiXmlElement* element_;
};

// Numbers in the files have a point whatever locale the host chose, and the parser and the
// C library read and print them by the locale: loads and saves run their thread in the "C"
// locale while one of these lives, and give the thread its own back at the end.
class ClassicNumbers {
public:
    ClassicNumbers();
    ~ClassicNumbers();
    ClassicNumbers(const ClassicNumbers&) = delete;
    ClassicNumbers& operator=(const ClassicNumbers&) = delete;

private:
    locale_t previous_;
};

// TinyXML parses each nested element in a recursion of its own, so a hostile file of deep
// nesting would exhaust the stack; views nest groups a few levels deep. The reader refuses a
// document that opens more elements than this, and the writer a tree that would need more.
constexpr int kXmlMaxDepth = 1000;

// Why a read gave less than a whole document.
enum class XmlReadProblem {
    None,
    CannotOpen, // the file can't be opened or read
    TooDeep,    // refused unparsed: nested deeper than kXmlMaxDepth
    Broken      // the parser stopped at an error; what it built before stays
};

// One document and its whole tree, freed with it. A new document starts with the declaration
// <?xml version="1.0" ?> so that a written file begins with it.
class XmlDocument {
public:
    XmlDocument();

    // The tree takes ownership of the element.
    void appendElement(XmlElement& element) { document_.LinkEndChild(element.data()); }
    // The first element of the document (the declaration is no element); null if there is none.
    XmlElement root() { return document_.FirstChildElement(); }

    // The text TinyXML prints, written in one piece. False when the file couldn't be written whole.
    bool write(const std::string& fileName) const;
    // Replaces the tree by the file's. False for a file that can't be read or parsed; the tree
    // is then empty, except that what the parser built before an error stays, so a file cut
    // short still gives its first part. A file nested too deep for the parser's recursion to
    // be safe is refused unparsed.
    bool read(const std::string& fileName);
    // What the last read found, and for a broken document the parser's words and place.
    XmlReadProblem problem() const { return problem_; }
    std::string errorText() const { return document_.ErrorDesc(); }
    int errorRow() const { return document_.ErrorRow(); }
    int errorColumn() const { return document_.ErrorCol(); }

private:
    TiXmlDocument document_;
    XmlReadProblem problem_ = XmlReadProblem::None;
};
