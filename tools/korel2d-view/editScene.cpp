// Writes the view the editor's tests work on: a page whose corner is not at the origin, the
// rectangle "box" (100, 100)-(200, 150) over the larger one "under", and a few more of other kinds.
#include "ViewBuilder.h"

#include <cstdio>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: korel2d-view-scene OUT\n");
        return 2;
    }
    korelgen::RectFields under, box, child;
    under.x0 = 80, under.y0 = 80, under.x1 = 220, under.y1 = 170;
    box.x0 = 100, box.y0 = 100, box.x1 = 200, box.y1 = 150;
    box.fill[2] = 1;
    child.x0 = 300, child.y0 = 100, child.x1 = 340, child.y1 = 140;
    korelgen::CircleFields circle;
    circle.x = 350, circle.y = 250;
    korelgen::PolyFields trace;
    trace.points = {{0, 300, 160}, {1, 330, 190}, {2, 360, 160}};
    korelgen::LineFields line;
    line.x1 = 60, line.y1 = 60, line.x2 = 400, line.y2 = 60;
    korelgen::ViewBuilder b;
    b.page(50, 40, 400, 300, 0.2f, 0.2f, 0.25f);
    b.rect(under, "under").rect(box, "box").circle(circle).line(line);
    b.beginGroup(2).rect(child, "child").polyline(trace).endGroup();
    b.dataSection();
    FILE* file = std::fopen(argv[1], "wb");
    const bool written = file && std::fwrite(b.bytes().data(), 1, b.size(), file) == b.size();
    if (!file || std::fclose(file) != 0 || !written) {
        std::fprintf(stderr, "korel2d-view-scene: cannot write %s\n", argv[1]);
        return 1;
    }
    return 0;
}
