// The typed attributes of the XML view files and the document that holds them.
#include "xml/xml.h"

#include "base/truncate.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// Zero bytes behind a text to parse: more than the longest step of the parser past a character.
constexpr size_t kParserSlack = 8;
// The longest "%f" text of a double: 309 integer digits, sign, point and six decimals.
constexpr size_t kMaxFixedDigits = 320;
const char* const kUtf8Mark = "\xef\xbb\xbf";

// Index + 1 is the KR_POS_ word; the last, the centre, also stands for every unknown value.
const char* const positionWords[] = {"leftUpper",   "centerUpper", "rightUpper",
                                     "rightCenter", "rightLower",  "centerLower",
                                     "leftLower",   "leftCenter",  "center"};
static_assert(sizeof positionWords / sizeof *positionWords == size_t(KR_POS_CENTRE), "one word per position");

// Whether the markup opens more than kXmlMaxDepth elements that it hasn't closed. It skips what the
// parser skips, ending each construct where the parser ends it (comments at "-->", CDATA at
// "]]>", other "<!" and "<?" at the first ">"), steps over quoted attribute values and doesn't
// count self-closing tags. It judges nothing else: a count too high refuses only garbage, and
// the parser still judges what passes.
bool nestsTooDeep(const std::string& bytes)
{
    const size_t n = bytes.size();
    auto past = [&](size_t from, const char* end) {
        const size_t at = bytes.find(end, from);
        return at == std::string::npos ? n : at + std::strlen(end);
    };
    int depth = 0;
    for (size_t i = bytes.find('<'); i < n; i = bytes.find('<', i)) {
        if (bytes.compare(i, 4, "<!--") == 0) {
            i = past(i + 4, "-->");
        } else if (bytes.compare(i, 9, "<![CDATA[") == 0) {
            i = past(i + 9, "]]>");
        } else if (bytes.compare(i, 2, "<!") == 0 || bytes.compare(i, 2, "<?") == 0) {
            i = past(i + 2, ">");
        } else {
            size_t end = i + 1;
            for (char quote = 0; end < n && (quote || bytes[end] != '>'); ++end)
                if (bytes[end] == quote)
                    quote = 0;
                else if (!quote && (bytes[end] == '"' || bytes[end] == '\''))
                    quote = bytes[end];
            if (bytes[i + 1] == '/')
                depth = std::max(depth - 1, 0); // a stray closer can't hide openers that follow
            else if (end < n && bytes[end - 1] != '/' && ++depth > kXmlMaxDepth)
                return true;
            i = end;
        }
    }
    return false;
}

// Line ends as the parser's own file loading leaves them, so that a value spanning lines reads
// the same whichever way the bytes came: CR LF and a lone CR become LF. Files of our writer have
// no CR, and the search for the first is all they cost.
void normalizeLineEnds(std::string& bytes)
{
    size_t in = bytes.find('\r');
    if (in == std::string::npos)
        return;
    size_t out = in;
    while (in < bytes.size()) {
        if (bytes[in] == '\r') {
            bytes[out++] = '\n';
            if (++in < bytes.size() && bytes[in] == '\n')
                ++in;
        } else {
            bytes[out++] = bytes[in++];
        }
    }
    bytes.resize(out);
}

// One colour component as the file holds it: truncated, not rounded, so that the value read
// back from two digits (digits / 255) writes the same digits again. Clamped so that garbage
// still fits two digits.
int componentDigits(float component)
{
    return std::clamp(truncToInt(double(component) * 255.0), 0, 255);
}

} // namespace

void XmlElement::setAttributeString(const char* name, const std::string& value)
{
    element_->SetAttribute(name, value.c_str());
}

std::string XmlElement::getAttributeString(const char* name) const
{
    const char* value = text(name);
    return value ? value : "";
}

void XmlElement::setAttributeInt(const char* name, int value)
{
    char digits[16];
    *std::to_chars(digits, digits + sizeof digits - 1, value).ptr = '\0';
    element_->SetAttribute(name, digits);
}

int XmlElement::getAttributeInt(const char* name) const
{
    const char* value = text(name);
    // Wrapped to 32 bits, so that the 0xffffffff of setAttributeHex reads back as -1.
    return value ? int(uint32_t(std::strtol(value, nullptr, 0))) : 0;
}

void XmlElement::setAttributeHex(const char* name, int value)
{
    char digits[16];
    std::snprintf(digits, sizeof digits, "0x%x", unsigned(value));
    element_->SetAttribute(name, digits);
}

void XmlElement::setAttributeDouble(const char* name, double value)
{
    // What a default stream writes ("%g"), with a point whatever the locale.
    char digits[32];
    *std::to_chars(digits, digits + sizeof digits - 1, value, std::chars_format::general, 6).ptr = '\0';
    element_->SetAttribute(name, digits);
}

double XmlElement::getAttributeDouble(const char* name) const
{
    double value = 0.0;
    if (element_)
        element_->QueryDoubleAttribute(name, &value);
    return value;
}

void XmlElement::setAttributeBool(const char* name, bool value)
{
    element_->SetAttribute(name, value ? "true" : "false");
}

bool XmlElement::getAttributeBool(const char* name) const
{
    const char* value = text(name);
    return value && std::strcmp(value, "true") == 0;
}

void XmlElement::setAttributeColor(const char* name, const Color& value)
{
    if (value.none()) {
        element_->SetAttribute(name, "none");
        return;
    }
    char digits[16];
    std::snprintf(digits, sizeof digits, "#%02x%02x%02x%02x", componentDigits(value.r()), componentDigits(value.g()),
                  componentDigits(value.b()), componentDigits(value.a()));
    element_->SetAttribute(name, digits);
}

Color XmlElement::getAttributeColor(const char* name) const
{
    Color color;
    const char* value = text(name);
    if (!value)
        return color;
    if (std::strcmp(value, "none") == 0) {
        color.setNone(true);
        return color;
    }
    // The first character is the writer's "#" and isn't looked at. Pairs past the end of a
    // short text read as 0: "#ff0000" is red of alpha 0, not opaque red.
    const std::string digits = value;
    for (size_t i = 0; i < 4; ++i) {
        const size_t at = 1 + 2 * i;
        const std::string pair = at < digits.size() ? digits.substr(at, 2) : std::string();
        color[int(i)] = float(std::strtol(pair.c_str(), nullptr, 16) / 255.0);
    }
    return color;
}

void XmlElement::setAttributeMatrix(const char* name, const Matrix2<double>& value)
{
    // Six decimals ("%f") with a point whatever the locale; a huge number keeps all its digits.
    const auto& m = value.m;
    std::string text;
    for (double entry : {m[0][0], m[1][0], m[0][1], m[1][1], m[0][2], m[1][2]}) {
        char digits[kMaxFixedDigits];
        const std::to_chars_result end =
            std::to_chars(digits, digits + sizeof digits, entry, std::chars_format::fixed, 6);
        if (!text.empty())
            text += ' ';
        text.append(digits, end.ptr);
    }
    element_->SetAttribute(name, text.c_str());
}

Matrix2<double> XmlElement::getAttributeMatrix(const char* name) const
{
    Matrix2<double> matrix;
    const char* value = text(name);
    if (!value)
        return matrix;
    // Numbers missing at the end of the text are 0, not the identity's.
    auto& m = matrix.m;
    m[0][0] = m[1][0] = m[0][1] = m[1][1] = m[0][2] = m[1][2] = 0.0;
    std::sscanf(value, "%lf %lf %lf %lf %lf %lf", &m[0][0], &m[1][0], &m[0][1], &m[1][1], &m[0][2], &m[1][2]);
    return matrix;
}

void XmlElement::setAttributePosition(const char* name, int value)
{
    const int index = value >= KR_POS_UPPER_LEFT && value <= KR_POS_CENTRE ? value - 1 : KR_POS_CENTRE - 1;
    element_->SetAttribute(name, positionWords[index]);
}

int XmlElement::getAttributePosition(const char* name) const
{
    const char* value = text(name);
    for (int position = KR_POS_UPPER_LEFT; value && position < KR_POS_CENTRE; ++position)
        if (std::strcmp(value, positionWords[position - 1]) == 0)
            return position;
    return KR_POS_CENTRE;
}

ClassicNumbers::ClassicNumbers()
{
    static const locale_t classic = newlocale(LC_ALL_MASK, "C", locale_t(0));
    previous_ = uselocale(classic);
}

ClassicNumbers::~ClassicNumbers()
{
    uselocale(previous_);
}

XmlDocument::XmlDocument()
{
    document_.LinkEndChild(new TiXmlDeclaration("1.0", "", ""));
}

bool XmlDocument::write(const std::string& fileName) const
{
    // The parser's printer into one string, written at once: its printing to a FILE formats
    // every attribute through fprintf.
    TiXmlPrinter printer;
    document_.Accept(&printer);
    FILE* file = std::fopen(fileName.c_str(), "wb");
    if (!file)
        return false;
    const bool written = std::fwrite(printer.CStr(), 1, printer.Size(), file) == printer.Size();
    return std::fclose(file) == 0 && written;
}

bool XmlDocument::read(const std::string& fileName)
{
    document_.Clear();
    problem_ = XmlReadProblem::CannotOpen;
    FILE* file = std::fopen(fileName.c_str(), "rb");
    if (!file)
        return false;
    // Read straight into the string that is parsed: the parser's own file loading would read
    // the whole file a second time into a copy of its own.
    constexpr size_t chunk = 1 << 16;
    std::string bytes;
    for (size_t got = 0;;) {
        bytes.resize(got + chunk);
        const size_t read = std::fread(&bytes[got], 1, chunk, file);
        got += read;
        if (read == 0) {
            bytes.resize(got);
            break;
        }
    }
    const bool readError = std::ferror(file);
    std::fclose(file);
    if (readError)
        return false;
    problem_ = XmlReadProblem::TooDeep;
    if (nestsTooDeep(bytes))
        return false;
    normalizeLineEnds(bytes);
    // The parser takes a UTF-8 lead byte's word for the length of its character and steps over
    // whatever follows, a terminator too. So the text ends at its first zero byte, as the parser
    // would see it, and zeros behind it stop any step there instead of past the buffer.
    bytes.resize(std::min(bytes.size(), bytes.find('\0')));
    bytes.append(kParserSlack, '\0');
    // Byte for byte: names and texts of binary views hold Latin-1 as often as UTF-8, and the
    // parser's UTF-8 mode would take a Latin-1 letter for the start of a longer character and
    // swallow the quote behind it. UTF-8 texts pass unchanged all the same; only a byte-order
    // mark, which that mode would have skipped, is taken off here.
    const size_t start = bytes.compare(0, 3, kUtf8Mark) == 0 ? 3 : 0;
    document_.Parse(bytes.c_str() + start, nullptr, TIXML_ENCODING_LEGACY);
    problem_ = document_.Error() ? XmlReadProblem::Broken : XmlReadProblem::None;
    return problem_ == XmlReadProblem::None;
}
