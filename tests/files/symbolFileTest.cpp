// Symbol libraries: each symbol becomes a group of plain elements, whatever the file's line ends
// and encoding; lines that fit nothing are passed over.
#include "KorelEdit.h"
#include "LoadedView.h"
#include "ViewFixture.h"
#include "glyph/GlyphKit.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <string>
#include <vector>

using namespace k2dtest;

namespace {

// The elements imported from `text`, freed with the test.
struct Imported {
    ELEMENT_STRUCT* groups = nullptr;
    int result;
    explicit Imported(const std::string& text)
    {
        TempFile file(std::vector<uint8_t>(text.begin(), text.end()), ".sym");
        result = loadSymbolFile(file.path().c_str(), &groups);
    }
    ~Imported()
    {
        while (groups)
            elementDelete(groups, &groups);
    }
    // The children of the first group, by kind and a few fields.
    std::string shapes() const
    {
        std::string s;
        for (const ELEMENT_STRUCT* e = groups ? groups->child : nullptr; e; e = e->next)
            s += describe(e) + "; ";
        return s;
    }
    static std::string describe(const ELEMENT_STRUCT* e)
    {
        char s[512] = "";
        const auto* l = static_cast<const LINE_STRUCT*>(e->data);
        const auto* r = static_cast<const RECT_STRUCT*>(e->data);
        const auto* p = static_cast<const POLY_STRUCT*>(e->data);
        const auto* c = static_cast<const CIRCLE_STRUCT*>(e->data);
        const auto* t = static_cast<const TEXT_STRUCT*>(e->data);
        if (e->type == KR_LINE)
            snprintf(s, sizeof s, "line %g,%g-%g,%g style %d", l->x1, l->y1, l->x2, l->y2, l->strokeStyle);
        if (e->type == KR_RECT)
            snprintf(s, sizeof s, "rect %g,%g %g,%g stroke %d %g fill %d style %d", r->cornerX[0], r->cornerY[0],
                     r->cornerX[2], r->cornerY[2], r->strokeOn, r->strokeColor[1], r->fillOn, r->strokeStyle);
        if (e->type == KR_CPOLY) {
            snprintf(s, sizeof s, "polygon width %g fill %d:", p->strokeWidth, p->fillOn);
            for (const COORD_STRUCT* k = p->coords; k; k = k->next)
                snprintf(s + strlen(s), sizeof s - strlen(s), " %d:%g,%g", k->id, k->x, k->y);
        }
        if (e->type == KR_CIRCLE)
            snprintf(s, sizeof s, "circle %g m %g %g %g %.5f..%.5f style %d", c->rx, c->matrix[0], c->matrix[3], c->ry,
                     c->start, c->end, c->strokeStyle);
        if (e->type == KR_TEXT)
            snprintf(s, sizeof s, "text '%s' %s %d", t->text, t->fontFamily, t->fontSize);
        return s;
    }
};

const std::string kHead = "SYMBOL-NR. 12\nBEZUGSPUNKT_X 5 BEZUGSPUNK_Y 7\n";

TEST(SymbolFile, KeywordsMakeTheirShapes)
{
    struct Case {
        const char* lines;
        const char* shapes;
    } const cases[] = {
        {"VEKTOR\nX1 1 Y1 2 X2 3 Y2 4 RGB-Farbe 255 128 0 GESTRICHELT\n", "line 1,2-3,4 style 4; "},
        {"VEKTOR\nX1 1 Y1 2 X2 3 Y2 4 RGB-Farbe 0 0 0 gestrichelt\nVEKTOR\nX1 1 Y1 2 X2 3 Y2 4 RGB-Farbe 0 0 0\n",
         "line 1,2-3,4 style 0; line 1,2-3,4 style 0; "},
        {"RECHTECK\nX1 0 Y1 0 X2 10 Y2 20 RGB-Farbe 0 0 0 GEPUNKTET\n", "rect 0,0 10,20 stroke 1 0 fill 0 style 1; "},
        {"GEF. RECHTECK\nX1 0 Y1 0 X2 10 Y2 20 RGB-Farbe 0 0 0 STRICHPUNKT\n", "rect 0,0 10,20 stroke 0 1 fill 1 style 0; "},
        {"KREIS\nX1 0 Y1 0 RADIUS -25 RGB-Farbe 0 0 0 STRICHPUNKT\n", "circle 100 m 0.25 0.25 100 0.00000..6.28319 style 9; "},
        {"KREIS_BOGEN\nX1 0 Y1 0 RADIUS 50 Winkelanfang[Grad] 300 Winkelende[GRAD] 60 RGB-Farbe 0 0 0\n",
         "circle 100 m 0.5 0.5 100 3.66519..5.75959 style 0; "},
        {"KREIS_BOGEN\nX1 0 Y1 0 RADIUS 50 Winkelanfang[Grad] 300 Winkelende[Grad] 60 RGB-Farbe 0 0 0\n", ""},
        {"POLYGON\nX1 0 Y1 0 X2 10 Y2 0 RGB-Farbe 0 0 0\nPOLYGON\nX1 10 Y1 0 X2 10 Y2 10 RGB-Farbe 0 0 0\n"
         "POLYGON\nX1 10 Y1 10 X2 0 Y2 0 RGB-Farbe 0 0 0\n",
         "polygon width 3 fill 1: 0:0,0 0:10,0 0:10,10; "},
        {"POLYGON\nX1 0 Y1 0 X2 10 Y2 0 RGB-Farbe 0 0 0\nVEKTOR\nX1 0 Y1 0 X2 1 Y2 1 RGB-Farbe 0 0 0\n"
         "POLYGON\nX1 10 Y1 0 X2 10 Y2 10 RGB-Farbe 0 0 0\nPOLYGON\nX1 20 Y1 0 X2 10 Y2 10 RGB-Farbe 0 0 0\n",
         "polygon width 3 fill 1: 0:0,0; line 0,0-1,1 style 0; polygon width 3 fill 1: 0:10,0; "
         "polygon width 3 fill 1: 0:20,0; "},
        {"TEXT\nX1 0 Y1 0 Font 2 RGB-Farbe 0 0 0 CHARACTER Pumpe Nord\nTEXT\nX1 0 Y1 0 Font 7 RGB-Farbe 0 0 0 CHARACTER\n"
         "TEXT\nX1 0 Y1 0 Font 3 RGB-Farbe 0 0 0 CHARACTER V\nTEXT\nX1 0 Y1 0 Font 7 RGB-Farbe 0 0 0 CHARACTER \xd6l Druck\n",
         "text 'Pumpe' Arial 15; text 'V' Arial 18; text '\xd6l' Arial 12; "},
        {"UNBEKANNT\nVEKTOR\nX1 99999999999 Y1 2 X2 3 Y2 4 RGB-Farbe 0 0 0\nX1 1 Y1 2 X2 3 Y2 4 RGB-Farbe 0 0 0\n",
         "line 1,2-3,4 style 0; "},
    };
    for (const Case& c : cases) {
        Imported imported(kHead + c.lines);
        ASSERT_EQ(imported.result, 0);
        ASSERT_NE(imported.groups, nullptr);
        EXPECT_EQ(imported.shapes(), c.shapes) << c.lines;
    }
}

TEST(SymbolFile, SymbolsAreGroupsAndTheFileItsOwnEncoding)
{
    Imported twice(kHead + "VEKTOR\nX1 1 Y1 2 X2 3 Y2 4 RGB-Farbe 255 128 0\n" + kHead + "SYMBOL-NR. 3\n");
    std::string names;
    for (const ELEMENT_STRUCT* g = twice.groups; g; g = g->next)
        names += std::string(g->name) + ";";
    EXPECT_EQ(names, "SYMBOL 12;SYMBOL 12;SYMBOL 3;");
    const LINE_STRUCT* line = static_cast<const LINE_STRUCT*>(twice.groups->child->data);
    EXPECT_EQ(std::vector<float>(line->strokeColor, line->strokeColor + 4), std::vector<float>({1, 128 / 255.0f, 0, 1}));

    // A misspelt reference point passes over the shapes after it.
    Imported misspelt("SYMBOL-NR. 1\nBEZUGSPUNKT_X 5 BEZUGSPUNKT_Y 7\nVEKTOR\nX1 1 Y1 2 X2 3 Y2 4 RGB-Farbe 0 0 0\n");
    EXPECT_EQ(misspelt.shapes(), "");

    const std::string text = "TEXT\nX1 10 Y1 0 Font 1 RGB-Farbe 0 0 0 CHARACTER ";
    Imported latin1(kHead + text + "Gr\xf6\xdf" "e\n");
    Imported utf8(kHead + text + "Gr\xc3\xb6\xc3\x9f" "e\n");
    Imported marked("\xef\xbb\xbf" + kHead + text + "Gr\xc3\xb6\xc3\x9f" "e\r\n");
    for (const Imported* i : {&latin1, &utf8, &marked}) {
        ASSERT_NE(i->groups, nullptr);
        ASSERT_NE(i->groups->child, nullptr);
        const TEXT_STRUCT* t = static_cast<const TEXT_STRUCT*>(i->groups->child->data);
        EXPECT_EQ(std::string(t->text), "Gr\xf6\xdf" "e");
        int metric[2] = {0, 0};
        gkFontStringMetric(t->font, t->text, metric);
        EXPECT_EQ(t->x, 10 + float(metric[0]) / 2); // the file gives the left end
    }

    takeLog();
    ELEMENT_STRUCT* none = nullptr;
    EXPECT_EQ(loadSymbolFile("/no/such/file.sym", &none), -1);
    EXPECT_EQ(takeLog(), "cannot open file /no/such/file.sym\n");
    EXPECT_EQ(Imported("VEKTOR\nX1 1 Y1 2 X2 3 Y2 4 RGB-Farbe 0 0 0\n").groups, nullptr);
}

// The shipped sample cut at every byte and garbled: every piece imports and frees.
TEST(SymbolFile, TheSampleCutOrGarbledImports)
{
    const std::vector<uint8_t> bytes = fileBytes(KOREL2D_EXAMPLES_DIR "/legacy/symbols.sym");
    const std::string sample(bytes.begin(), bytes.end());
    ASSERT_EQ(countList(Imported(sample).groups), 3);
    for (size_t n = 0; n < sample.size(); ++n)
        ASSERT_EQ(Imported(sample.substr(0, n)).result, 0) << n;
    std::mt19937 random(18);
    // Bytes anywhere, digits where numbers stand, spaces and line ends that split or join items.
    const char kGarbage[] = {'\0', '\n', ' ', '-', '9', '\xff', '\xc3'};
    for (int round = 0; round < 10000; ++round) {
        std::string copy = sample;
        for (int flips = 1 + int(random() % 6); flips > 0; --flips)
            copy[random() % copy.size()] = round % 2 ? char(random()) : kGarbage[random() % sizeof kGarbage];
        ASSERT_EQ(Imported(copy).result, 0) << round;
    }
}

} // namespace
