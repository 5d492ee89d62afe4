// Graph: a strip chart or xy plot with frame, grid, ticks and labels.
#include "KorelEdit.h"
#include "elements/elementKinds.h"
#include "elements/kindCommon.h"
#include "glyph/GlyphKit.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>

static GRAPH_STRUCT graphDefaults()
{
    GRAPH_STRUCT g = {};
    g.x = 200.0f;
    g.y = 600.0f;
    g.width = 500.0f;
    g.height = 200.0f;
    g.ymin = -100.0f;
    g.ymax = 100.0f;
    g.xmax = 100.0f;
    g.rate = 10.0f;
    g.autoscale = 1;
    g.autoscalex = 1;
    g.samples = 500;
    setColor(g.outlineColor, 1, 1, 1, 1);
    g.outlineWidth = 1.0f;
    g.gridx = g.gridy = 1;
    g.gridxAuto = g.gridyAuto = 1;
    g.gridxSpace = 10.0f;
    g.gridySpace = 1.0f;
    g.gridStippleFactor = 1;
    g.gridStipplePattern = 0xFFFF;
    g.gridStyle = 1;
    setColor(g.gridColor, 0.5f, 0.25f, 0.25f, 1);
    g.labelx = g.labely = 1;
    g.labelXmax = 100.0f;
    g.labelYmax = 100.0f;
    g.tickx = g.ticky = 1;
    g.tickxAuto = g.tickyAuto = 1;
    g.tickxSpace = g.tickySpace = 2.0f;
    g.tickxSub = g.tickySub = 5;
    strcpy(g.fontFamily, "Helvetica [fixed]");
    g.fontStyle = 1;
    g.fontSize = 10;
    g.smoothYmin = -100.0f;
    g.smoothYmax = 100.0f;
    g.smoothXmax = 100.0f;
    return g;
}

GRAPH_STRUCT* createGraph(const GRAPH_STRUCT* source)
{
    GRAPH_STRUCT* g = createRecordOf(source, graphDefaults(), "createGraph");
    if (!g)
        return nullptr;
    // Each graph owns its label font: a copy gets a font of its own.
    g->font = gkFontCreate(g->fontFamily, g->fontStyle, g->fontSize);
    KGraphSetXLabel(g, g->xmin, g->xmax);
    KGraphSetYLabel(g, g->ymin, g->ymax);
    return g;
}

void graphFreeData(void* data)
{
    GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(data);
    gkFontFree(g->font);
    g->font = 0;
}

int graphSetAttr(ELEMENT_STRUCT* element)
{
    const GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(element->data);
    ELEMENT_ATTR* attr = &element->attr;
    attrSeedCommon(attr);
    // Colour actions act on outline and grid: they reach the frame through these two.
    attr->lineStyle = 0;
    std::copy(g->outlineColor, g->outlineColor + 4, attr->strokeColor);
    std::copy(g->gridColor, g->gridColor + 4, attr->fillColor);
    return 0;
}

// The record holds the lower left corner; the element is centred like every other kind.
int graphSetPickSticky(ELEMENT_STRUCT* element)
{
    const GRAPH_STRUCT* g = static_cast<GRAPH_STRUCT*>(element->data);
    const float x[2] = {g->x, g->x + g->width}, y[2] = {g->y, g->y + g->height};
    float box[4];
    pointsBox(x, y, 2, box);
    boxGeometry(element, box[0], box[1], box[2], box[3]);
    placeCentre(element, float(g->x + g->width * 0.5), float(g->y + g->height * 0.5));
    element->width = g->width;
    element->height = g->height;
    return graphSetAttr(element);
}

// Truncation that stays defined for NaN and infinities from degenerate ranges.
static int truncInRange(double value, int lo, int hi)
{
    if (!(value >= lo))
        return lo;
    return value > hi ? hi : int(value);
}

// printf format wide enough for the integer digits of lo..hi and the decimals a step of `space` needs.
static void buildLabelFormat(char format[32], float space, float lo, float hi)
{
    float l = float(std::log10(std::fabs(space)));
    int decimals = l >= 0 ? 0 : truncInRange(std::fabs(l) + 1.0, 0, 20);
    float g = float(std::log10(std::max(std::fabs(lo), std::fabs(hi))));
    int digits = g < 1 ? 1 : truncInRange(g + 1.0, 1, 60);
    int width = decimals ? digits + decimals + 1 : digits;
    snprintf(format, 32, "%%%d.%df", width, decimals);
}

int KGraphSetXLabel(GRAPH_STRUCT* record, float lo, float hi)
{
    buildLabelFormat(record->labelXFormat, record->tickxSpace, lo, hi);
    return 0;
}

int KGraphSetYLabel(GRAPH_STRUCT* record, float lo, float hi)
{
    buildLabelFormat(record->labelYFormat, record->tickySpace, lo, hi);
    return 0;
}
