// The rectangle family in XML view files: rectangles, images and clip areas as "rect", and
// buttons. The records keep four corners (lower left, upper left, upper right, lower right),
// the file a centre, a size and a matrix of two unit columns, so only a parallelogram survives
// the trip: corner 0 follows from the other three.
#include "xml/elementXml.h"

namespace elementXml {
namespace {

struct Frame {
    double x = 0, y = 0, width = 1, height = 1;
    Matrix2<double> matrix;
};

// A side of length 0 has the factor 1 and so the size 1; its corners stay where they were.
Frame frameOf(const float* cornerX, const float* cornerY)
{
    double x[4], y[4];
    for (int k = 0; k < 4; ++k)
        x[k] = cornerX[k] - xmlWrite.wx, y[k] = cornerY[k] - xmlWrite.wy;
    const double tx = x[1] - (x[2] - x[3]), ty = y[1] - (y[2] - y[3]);
    Frame f;
    f.matrix = Matrix2<double>(x[3] - tx, x[2] - x[3], 0, y[3] - ty, y[2] - y[3], 0);
    double a, b;
    f.matrix.normalize(&a, &b);
    f.width = 1 / a;
    f.height = 1 / b;
    const Vector2<double> centre = f.matrix * Vector2<double>(f.width / 2, f.height / 2);
    f.x = centre.x + tx;
    f.y = centre.y + ty;
    return f;
}

void writeCentre(XmlElement& e, const Frame& f)
{
    e.setAttributeDouble("x", f.x);
    e.setAttributeDouble("y", f.y);
}

void writeSize(XmlElement& e, const Frame& f)
{
    e.setAttributeDouble("width", f.width);
    e.setAttributeDouble("height", f.height);
    e.setAttributeMatrix("matrix", f.matrix);
}

// A hand-made matrix with a translation moves all four corners by it.
void readCorners(const XmlElement& e, float* cornerX, float* cornerY)
{
    const Matrix2<double> m = e.getAttributeMatrix("matrix");
    const double x = e.getAttributeDouble("x") + xmlRead.wx, y = e.getAttributeDouble("y") + xmlRead.wy;
    const double w = e.getAttributeDouble("width") / 2, h = e.getAttributeDouble("height") / 2;
    const double dx[4] = {-w, -w, w, w}, dy[4] = {-h, h, h, -h};
    for (int k = 0; k < 4; ++k) {
        const Vector2<double> corner = m * Vector2<double>(dx[k], dy[k]);
        cornerX[k] = float(x + corner.x);
        cornerY[k] = float(y + corner.y);
    }
}

// Images, buttons and clip areas carry corner radii of 0 that no record has; a reader drops them.
void writeNoRadii(XmlElement& e)
{
    e.setAttributeDouble("rx", 0);
    e.setAttributeDouble("ry", 0);
}

// Zero radii and the frame: how a button and a clip area begin.
template <class Record> void writeCornerFrame(XmlElement& e, const Record* r)
{
    writeNoRadii(e);
    const Frame f = frameOf(r->cornerX, r->cornerY);
    writeCentre(e, f);
    writeSize(e, f);
}

void writeRect(XmlElement& e, const RECT_STRUCT* r)
{
    const Frame f = frameOf(r->cornerX, r->cornerY);
    writeCentre(e, f);
    writeStroke(e, r, &r->strokeOn);
    writeFill(e, r, &r->fillOn);
    writeSize(e, f);
    e.setAttributeBool("mask", false);
}

// The picture's place and zoom and a stroke belong to images of other programs; ours has
// none of them and writes the fixed values such a reader expects.
void writeImage(XmlElement& e, const IMAGE_STRUCT* image)
{
    e.setAttributeInt("bitmap", image->imageId);
    e.setAttributeDouble("bitmap-x", 0);
    e.setAttributeDouble("bitmap-y", 0);
    e.setAttributeDouble("bitmap-zoom", 1);
    writeNoRadii(e);
    e.setAttributeString("stroke", "none");
    e.setAttributeDouble("stroke-width", 0);
    e.setAttributeInt("stroke-style", 1);
    e.setAttributeBool("stroke-antialias", false);
    writeFill(e, image, nullptr);
    const Frame f = frameOf(image->cornerX, image->cornerY);
    writeCentre(e, f);
    writeSize(e, f);
    e.setAttributeBool("mask", false);
}

void writeButton(XmlElement& e, const BUTTON_STRUCT* b)
{
    writeCornerFrame(e, b);
    writeColor(e, "color0", b->color0);
    writeColor(e, "color1", b->color1);
    writeColor(e, "color2", b->color2);
    e.setAttributeDouble("stroke-width", b->strokeWidth);
    e.setAttributeInt("state", b->state);
}

void readButton(const XmlElement& e, BUTTON_STRUCT* b)
{
    readCorners(e, b->cornerX, b->cornerY);
    readColor(e, "color0", b->color0);
    readColor(e, "color1", b->color1);
    readColor(e, "color2", b->color2);
    b->strokeWidth = readFloat(e, "stroke-width");
    b->state = e.getAttributeInt("state");
}

// A picture number no "bitmap" entry has leaves the image without pixels.
void resolveBitmap(IMAGE_STRUCT* image)
{
    const auto found = xmlRead.mapImage.find(image->imageId);
    if (found == xmlRead.mapImage.end()) {
        std::printf("Load: could not find image id %d\n", image->imageId);
        return;
    }
    image->width = found->second.width;
    image->height = found->second.height;
    loadTextureFromData(found->second.pixels.data(), image);
}

// "mask" makes a clip area whatever "bitmap" says; else a picture number makes an image.
uint32_t rectKind(const XmlElement& e)
{
    if (e.name() == "button")
        return KR_BUTTON;
    if (e.getAttributeBool("mask"))
        return KR_SCISSOR;
    return e.getAttributeInt("bitmap") == 0 ? KR_RECT : KR_IMAGE;
}

} // namespace

void writeRectFamily(XmlElement& e, const ELEMENT_STRUCT* element)
{
    const void* data = element->data;
    switch (element->type) {
    case KR_RECT: writeRect(e, static_cast<const RECT_STRUCT*>(data)); break;
    case KR_IMAGE: writeImage(e, static_cast<const IMAGE_STRUCT*>(data)); break;
    case KR_BUTTON: writeButton(e, static_cast<const BUTTON_STRUCT*>(data)); break;
    case KR_SCISSOR:
        writeCornerFrame(e, static_cast<const SCISSOR_STRUCT*>(data));
        e.setAttributeBool("mask", true);
        break;
    default: break;
    }
}

ELEMENT_STRUCT* readRectFamily(const XmlElement& e, ELEMENT_STRUCT** list)
{
    ELEMENT_STRUCT* element = createNamed(rectKind(e), e, list);
    if (!element)
        return nullptr;
    void* data = element->data;
    switch (element->type) {
    case KR_RECT: {
        RECT_STRUCT* r = static_cast<RECT_STRUCT*>(data);
        readStroke(e, r, &r->strokeOn);
        readFill(e, r, &r->fillOn);
        readCorners(e, r->cornerX, r->cornerY);
        break;
    }
    case KR_IMAGE: {
        IMAGE_STRUCT* image = static_cast<IMAGE_STRUCT*>(data);
        image->imageId = e.getAttributeInt("bitmap");
        resolveBitmap(image);
        readFill(e, image, nullptr);
        readCorners(e, image->cornerX, image->cornerY);
        break;
    }
    case KR_BUTTON: readButton(e, static_cast<BUTTON_STRUCT*>(data)); break;
    case KR_SCISSOR: {
        SCISSOR_STRUCT* s = static_cast<SCISSOR_STRUCT*>(data);
        readCorners(e, s->cornerX, s->cornerY);
        break;
    }
    default: break;
    }
    return finish(element, e);
}

} // namespace elementXml
