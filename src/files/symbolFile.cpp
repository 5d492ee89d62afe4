// Symbol libraries: a text file of small line drawings under German keywords, each symbol made a
// group of plain elements for an editing tool to place.
#include "KorelEdit.h"
#include "core/linkedList.h"
#include "files/KStream.h"
#include "glyph/GlyphKit.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

namespace {

// Longer lines are read in pieces of this many characters, each a line of its own.
constexpr size_t kLineCharacters = 1023;
constexpr float kDegreesToRadians = 0.017453292f;
constexpr float kFullTurn = 6.2831855f;
constexpr float kColorScale = 255.0f;

// ---------------------------------------------------------------- text

// True when the bytes are UTF-8 throughout: such a file is decoded, any other taken byte for byte.
bool isUtf8(const std::vector<uint8_t>& bytes)
{
    for (size_t i = 0; i < bytes.size();) {
        const uint8_t lead = bytes[i];
        const size_t length = lead < 0x80 ? 1 : (lead >> 5) == 0x6 ? 2 : (lead >> 4) == 0xE ? 3 : (lead >> 3) == 0x1E ? 4 : 0;
        if (!length || i + length > bytes.size() || (length == 2 && lead < 0xC2))
            return false;
        for (size_t k = 1; k < length; ++k)
            if ((bytes[i + k] & 0xC0) != 0x80)
                return false;
        i += length;
    }
    return true;
}

// The font layer draws Latin-1 codes: characters beyond them become "?".
std::string utf8ToLatin1(const std::vector<uint8_t>& bytes)
{
    std::string text;
    size_t i = bytes.size() >= 3 && bytes[0] == 0xEF && bytes[1] == 0xBB && bytes[2] == 0xBF ? 3 : 0;
    while (i < bytes.size()) {
        const uint8_t lead = bytes[i];
        const size_t length = lead < 0x80 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : 4;
        uint32_t code = length == 1 ? lead : lead & (0x7F >> length);
        for (size_t k = 1; k < length; ++k)
            code = code << 6 | (bytes[i + k] & 0x3F);
        text += code <= 0xFF ? char(code) : '?';
        i += length;
    }
    return text;
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    size_t start = 0;
    while (start < text.size()) {
        size_t end = text.find('\n', start);
        end = end == std::string::npos ? text.size() : end + 1;
        for (size_t piece = start; piece < end; piece += kLineCharacters)
            lines.push_back(text.substr(piece, std::min(kLineCharacters, end - piece)));
        start = end;
    }
    return lines;
}

std::string trimmed(const std::string& line)
{
    const size_t first = line.find_first_not_of(" \t");
    if (first == std::string::npos)
        return "";
    const size_t last = line.find_last_not_of(" \t\r\n");
    return line.substr(first, last + 1 - first);
}

// ---------------------------------------------------------------- matching a data line

// A data line read against a pattern of words, "%d" for a whole number within 32 bits and "%s"
// for a word. What follows the pattern's end is ignored.
struct Matched {
    std::vector<int32_t> numbers;
    std::string word;
    bool hasWord = false;
};

bool isBlank(char c)
{
    return c == ' ' || c == '\t' || c == '\r' || c == '\n' || c == '\v' || c == '\f';
}

// Reads the pattern's items until one fails; returns how many matched.
size_t match(const std::string& line, const char* pattern, Matched* out)
{
    size_t pos = 0, items = 0;
    const auto skipBlanks = [&] {
        while (pos < line.size() && isBlank(line[pos]))
            ++pos;
    };
    for (const char* p = pattern; *p;) {
        if (*p == ' ') {
            ++p;
            skipBlanks();
        } else if (p[0] == '%' && p[1] == 'd') {
            p += 2;
            skipBlanks();
            const size_t start = pos;
            if (pos < line.size() && (line[pos] == '-' || line[pos] == '+'))
                ++pos;
            int64_t value = 0;
            const size_t digits = pos;
            for (; pos < line.size() && line[pos] >= '0' && line[pos] <= '9'; ++pos)
                if ((value = value * 10 + (line[pos] - '0')) > int64_t(INT32_MAX) + 1)
                    return items;
            if (pos == digits)
                return items;
            value = line[start] == '-' ? -value : value;
            if (value > INT32_MAX || value < INT32_MIN)
                return items;
            out->numbers.push_back(int32_t(value));
            ++items;
        } else if (p[0] == '%' && p[1] == 's') {
            p += 2;
            skipBlanks();
            const size_t start = pos;
            while (pos < line.size() && !isBlank(line[pos]))
                ++pos;
            if (pos == start)
                return items;
            out->word = line.substr(start, pos - start);
            out->hasWord = true;
            ++items;
        } else {
            if (pos >= line.size() || line[pos] != *p)
                return items;
            ++pos, ++p;
        }
    }
    return items;
}

int styleOf(const Matched& m)
{
    struct Style {
        const char* word;
        int style;
    };
    static const Style styles[] = {{"DURCHGEZOGEN", 0}, {"GESTRICHELT", 4}, {"GEPUNKTET", 1}, {"STRICHPUNKT", 9}};
    for (const Style& s : styles)
        if (m.hasWord && m.word == s.word)
            return s.style;
    return 0;
}

void setColor(float target[4], const int32_t* rgb)
{
    for (int i = 0; i < 3; ++i)
        target[i] = float(rgb[i]) / kColorScale;
    target[3] = 1.0f;
}

// ---------------------------------------------------------------- shapes

enum class Shape { line, rect, filledRect, polygon, circle, arc, text };

struct Keyword {
    const char* word;
    Shape shape;
    const char* pattern;
    size_t least; // items that must match
};

const char* const kSegment = "X1 %d Y1 %d X2 %d Y2 %d RGB-Farbe %d %d %d %s";
const Keyword kKeywords[] = {
    {"VEKTOR", Shape::line, kSegment, 7},
    {"RECHTECK", Shape::rect, kSegment, 7},
    {"GEF. RECHTECK", Shape::filledRect, kSegment, 7},
    {"POLYGON", Shape::polygon, kSegment, 7},
    {"KREIS", Shape::circle, "X1 %d Y1 %d RADIUS %d RGB-Farbe %d %d %d %s", 6},
    {"KREIS_BOGEN", Shape::arc,
     "X1 %d Y1 %d RADIUS %d Winkelanfang[Grad] %d Winkelende[GRAD] %d RGB-Farbe %d %d %d", 8},
    {"TEXT", Shape::text, "X1 %d Y1 %d Font %d RGB-Farbe %d %d %d CHARACTER %s", 7},
};

const Keyword* keywordOf(const std::string& line)
{
    for (const Keyword& k : kKeywords)
        if (line == k.word)
            return &k;
    return nullptr;
}

void setCorners(float cornerX[4], float cornerY[4], const int32_t* n)
{
    const float x1 = float(n[0]), y1 = float(n[1]), x2 = float(n[2]), y2 = float(n[3]);
    const float xs[4] = {x1, x1, x2, x2}, ys[4] = {y1, y2, y2, y1};
    std::copy(xs, xs + 4, cornerX);
    std::copy(ys, ys + 4, cornerY);
}

void makeLine(LINE_STRUCT* l, const Matched& m)
{
    const int32_t* n = m.numbers.data();
    l->x1 = float(n[0]), l->y1 = float(n[1]), l->x2 = float(n[2]), l->y2 = float(n[3]);
    l->strokeStyle = styleOf(m);
    setColor(l->strokeColor, n + 4);
}

void makeRect(RECT_STRUCT* r, const Matched& m, bool filled)
{
    const int32_t* n = m.numbers.data();
    setCorners(r->cornerX, r->cornerY, n);
    r->strokeWidth = 1.0f;
    r->strokeOn = filled ? 0 : 1;
    r->fillOn = filled ? 1 : 0;
    r->antialias = filled ? 1 : 0;
    r->strokeStyle = filled ? 0 : styleOf(m);
    setColor(r->fillColor, n + 4);
    if (filled) {
        const float white[4] = {1, 1, 1, 1};
        std::copy(white, white + 4, r->strokeColor);
    } else {
        setColor(r->strokeColor, n + 4);
    }
}

// Circles and arcs: the radius scales an ellipse of the stored radius. Arc angles count from the
// top, a quarter turn back from where the records count.
void makeCircle(CIRCLE_STRUCT* c, const Matched& m, bool arc)
{
    const int32_t* n = m.numbers.data();
    c->x = float(n[0]), c->y = float(n[1]);
    c->rx = c->ry = kStoredRadius;
    const float scale = float(std::abs(int64_t(n[2]))) / kStoredRadius;
    const float matrix[4] = {scale, 0, 0, scale};
    std::copy(matrix, matrix + 4, c->matrix);
    c->strokeOn = 1, c->strokeWidth = 1.0f, c->fillOn = 0, c->antialias = 1;
    if (arc) {
        const int64_t a = n[3], b = n[4] + (int64_t(n[3]) > n[4] ? 360 : 0);
        c->start = float(a - 90) * kDegreesToRadians;
        c->end = float(b - 90) * kDegreesToRadians;
        c->strokeStyle = 0;
        setColor(c->strokeColor, n + 5);
        setColor(c->fillColor, n + 5);
    } else {
        c->start = 0, c->end = kFullTurn;
        c->strokeStyle = styleOf(m);
        setColor(c->strokeColor, n + 3);
        setColor(c->fillColor, n + 3);
    }
}

// The position is the string's centre: the file gives its lower left corner.
void makeText(TEXT_STRUCT* t, const Matched& m)
{
    const int32_t* n = m.numbers.data();
    snprintf(t->text, sizeof t->text, "%s", m.word.c_str());
    snprintf(t->fontFamily, sizeof t->fontFamily, "%s", "Arial");
    t->fontStyle = GK_PLAIN;
    t->align = KR_POS_LOWER_LEFT;
    t->strokeWidth = 1.0f;
    const float identity[4] = {1, 0, 0, 1};
    std::copy(identity, identity + 4, t->matrix);
    t->fontSize = t->textSize = n[2] == 2 ? 15 : n[2] == 3 ? 18 : 12;
    setColor(t->strokeColor, n + 3);
    gkFontFree(t->font);
    t->font = gkFontCreate(t->fontFamily, t->fontStyle, t->fontSize);
    t->scalable = gkFontScalable(t->font);
    int metric[2] = {0, 0};
    gkFontStringMetric(t->font, t->text, metric);
    t->x = float(n[0]) + float(metric[0]) / 2;
    t->y = float(n[1]) + float(metric[1]) / 2;
}

// ---------------------------------------------------------------- the reading

enum class State { start, reference, keyword, shape };

struct Import {
    ELEMENT_STRUCT** elements;
    State state = State::start;
    ELEMENT_STRUCT* group = nullptr;
    const Keyword* shape = nullptr;
    ELEMENT_STRUCT* polygon = nullptr; // the chain of sides in progress
    float polygonEndX = 0, polygonEndY = 0;

    void finish(ELEMENT_STRUCT* element)
    {
        if (element && element->setPickSticky)
            element->setPickSticky(element);
    }

    ELEMENT_STRUCT* addChild(uint32_t kind)
    {
        ELEMENT_STRUCT* element = elementCreate(kind);
        if (!element)
            return nullptr;
        element->parent = group;
        elementAppend(element, &group->child);
        return element;
    }

    void beginSymbol(int32_t number)
    {
        finish(group);
        polygon = nullptr;
        group = elementCreate(KR_GROUP);
        state = group ? State::reference : State::start;
        if (!group)
            return;
        snprintf(group->name, sizeof group->name, "SYMBOL %d", number);
        elementAppend(group, elements);
    }

    void side(const Matched& m)
    {
        const int32_t* n = m.numbers.data();
        const float x1 = float(n[0]), y1 = float(n[1]);
        if (!polygon || x1 != polygonEndX || y1 != polygonEndY) {
            finish(polygon);
            polygon = addChild(KR_CPOLY);
            if (!polygon)
                return;
            POLY_STRUCT* p = static_cast<POLY_STRUCT*>(polygon->data);
            p->closed = 1, p->strokeOn = 1, p->strokeWidth = 3.0f, p->strokeStyle = 0, p->fillOn = 1,
            p->antialias = 1;
            setColor(p->strokeColor, n + 4);
            setColor(p->fillColor, n + 4);
        }
        COORD_STRUCT* point = createCoord();
        if (point) {
            point->id = 0, point->x = x1, point->y = y1;
            appendCoord(&static_cast<POLY_STRUCT*>(polygon->data)->coords, point);
        }
        polygonEndX = float(n[2]), polygonEndY = float(n[3]);
        finish(polygon);
    }

    void shapeLine(const std::string& line)
    {
        Matched m;
        if (match(line, shape->pattern, &m) < shape->least)
            return;
        state = State::keyword;
        if (shape->shape == Shape::polygon) {
            side(m);
            return;
        }
        static const uint32_t kinds[] = {KR_LINE, KR_RECT, KR_RECT, KR_CPOLY, KR_CIRCLE, KR_CIRCLE, KR_TEXT};
        ELEMENT_STRUCT* element = addChild(kinds[int(shape->shape)]);
        if (!element)
            return;
        void* data = element->data;
        switch (shape->shape) {
        case Shape::line: makeLine(static_cast<LINE_STRUCT*>(data), m); break;
        case Shape::rect: makeRect(static_cast<RECT_STRUCT*>(data), m, false); break;
        case Shape::filledRect: makeRect(static_cast<RECT_STRUCT*>(data), m, true); break;
        case Shape::circle: makeCircle(static_cast<CIRCLE_STRUCT*>(data), m, false); break;
        case Shape::arc: makeCircle(static_cast<CIRCLE_STRUCT*>(data), m, true); break;
        case Shape::text: makeText(static_cast<TEXT_STRUCT*>(data), m); break;
        case Shape::polygon: break;
        }
        finish(element);
    }

    void line(const std::string& text)
    {
        Matched m;
        if (match(text, "SYMBOL-NR. %d", &m) == 1) {
            beginSymbol(m.numbers[0]);
            return;
        }
        switch (state) {
        case State::start: return;
        case State::reference:
            if (match(text, "BEZUGSPUNKT_X %d BEZUGSPUNK_Y %d", &m) == 2) {
                group->x = float(m.numbers[0]), group->y = float(m.numbers[1]);
                state = State::keyword;
            }
            return;
        case State::keyword:
            if (text != "POLYGON")
                polygon = nullptr;
            if ((shape = keywordOf(text)))
                state = State::shape;
            return;
        case State::shape: shapeLine(text); return;
        }
    }
};

} // namespace

int loadSymbolFile(const char* path, ELEMENT_STRUCT** elements)
{
    std::vector<uint8_t> bytes;
    if (!path || !elements || !readWholeFile(path, &bytes)) {
        logMsg(1, "cannot open file %s\n", path ? path : "(null)");
        return -1;
    }
    const std::string text = isUtf8(bytes) ? utf8ToLatin1(bytes) : std::string(bytes.begin(), bytes.end());
    Import import{elements};
    for (const std::string& line : linesOf(text))
        import.line(trimmed(line));
    import.finish(import.group);
    return 0;
}
