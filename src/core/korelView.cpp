// The object face of the library: KorelView owns one view and forwards every operation to its
// implementation, which does the work with the flat interface and converts the host's values.
#include "KorelView.h"

#include "KorelEdit.h"
#include "base/base.h"
#include "base/truncate.h"
#include "core/handles.h"
#include "data/valueBuffer.h"

#include <algorithm>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>

namespace {

// A text from the host keeps at most this many bytes: one fewer than a text variable could
// hold, the length hosts of this interface have always got back.
constexpr size_t kHostTextLength = kTextBufferSize - 2;

bool isNumber(int type)
{
    return type >= KR_VAR_FLOAT && type <= KR_VAR_UINT64;
}

bool isReal(int type)
{
    return type == KR_VAR_FLOAT || type == KR_VAR_DOUBLE;
}

bool isLong(int type)
{
    return type == KR_VAR_INT64 || type == KR_VAR_UINT64;
}

// Stores a host's number by the variable's code: a real as a float (also into a double), an
// integer as 32 bits cut to the variable's width, or sign-extended into the 64 bits of either
// long code. Text and unknown codes keep their value.
void storeNumber(VARIABLE_STRUCT* variable, float real, int32_t integer)
{
    const int type = variable->type;
    if (isReal(type))
        writeValue(variable->value, type, real);
    else
        writeValue(variable->value, type == KR_VAR_UINT64 ? KR_VAR_INT64 : type, integer);
}

// The low 32 bits of a host's integer, as a signed number.
int32_t low32(long value)
{
    return int32_t(uint32_t(value));
}

int buttonCode(Korel2D::eMouseButton button)
{
    return button == Korel2D::eMouseCenter ? KR_MOUSE_CENTRE : button == Korel2D::eMouseRight ? KR_MOUSE_RIGHT : KR_MOUSE_LEFT;
}

int eventCode(Korel2D::eEventType type)
{
    return type == Korel2D::eEventRelease ? KR_EVENT_RELEASE : type == Korel2D::eEventMove ? KR_EVENT_MOVE : KR_EVENT_PRESS;
}

} // namespace

namespace Korel2D {

class KorelViewImpl {
public:
    ~KorelViewImpl()
    {
        if (view)
            krViewFree(view);
    }

    bool load(const std::string& path) { return replace(krViewLoad(path.c_str())); }
    bool load(const void* data, uint32_t size) { return replace(krViewLoadData(data, size)); }

    bool setVar(const std::string& name, long value)
    {
        return access(name, [value](VARIABLE_STRUCT* variable) { storeNumber(variable, float(value), low32(value)); });
    }

    bool setVar(const std::string& name, double value)
    {
        return access(name, [value](VARIABLE_STRUCT* variable) { storeNumber(variable, float(value), truncToInt(value)); });
    }

    bool setVar(const std::string& name, const std::string& value)
    {
        return access(name, [&value](VARIABLE_STRUCT* variable) {
            if (variable->type != KR_VAR_TEXT) {
                storeNumber(variable, float(strtod(value.c_str(), nullptr)), low32(strtol(value.c_str(), nullptr, 10)));
                return;
            }
            const size_t length = std::min(value.size(), kHostTextLength);
            memcpy(variable->value, value.data(), length);
            static_cast<char*>(variable->value)[length] = '\0';
        });
    }

    bool getVar(const std::string& name, long& value)
    {
        return access(name, [&value](const VARIABLE_STRUCT* variable) {
            if (isLong(variable->type))
                memcpy(&value, variable->value, sizeof value);
            else if (isNumber(variable->type))
                value = truncToInt64(readValue(variable->value, variable->type));
        });
    }

    bool getVar(const std::string& name, double& value)
    {
        return access(name, [&value](const VARIABLE_STRUCT* variable) {
            if (isNumber(variable->type))
                value = readValue(variable->value, variable->type);
        });
    }

    bool getVar(const std::string& name, std::string& value)
    {
        return access(name, [&value](const VARIABLE_STRUCT* variable) {
            char text[kTextBufferSize];
            if (isLong(variable->type)) {
                int64_t bits;
                memcpy(&bits, variable->value, sizeof bits);
                snprintf(text, sizeof text, "%d", int(int32_t(bits)));
            } else if (isNumber(variable->type) || variable->type == KR_VAR_TEXT) {
                formatValue(text, variable->value, variable->type);
            } else {
                return;
            }
            value = text;
        });
    }

    bool startView(bool animate)
    {
        started = (animate ? krViewStartAnim(view) : krViewStart(view)) == 0;
        animated = animate;
        framesToRender = kFramesAfterStart;
        return started;
    }

    bool stopView()
    {
        if (animated)
            krViewStopAnim(view);
        else
            krViewStop(view);
        return true;
    }

    bool draw(bool force)
    {
        if (!view)
            return false;
        // The plane is rendered in the first frames of a run, when the host forces it, and
        // otherwise shown as it was last rendered.
        const int mode = renderMode == eRenderDirect           ? KR_PLANE_DIRECT
                         : !force && framesToRender < 0 ? KR_PLANE_CACHED
                                                         : KR_PLANE_RENDER;
        krViewDrawPlane(view, mode);
        if (framesToRender >= 0)
            --framesToRender;
        return true;
    }

    void setRenderMode(eRenderMode mode) { renderMode = mode; }

    void setBackgroundMode(bool flag)
    {
        if (view)
            krSetBackgroundMode(view, flag ? 1 : 0);
    }

    void setUseDepthBuffer(bool flag)
    {
        if (view)
            krViewSetUseDepthBuffer(view, flag ? 1 : 0);
    }

    void setUseLineScaling(bool flag)
    {
        if (view)
            krViewSetUseLineScaling(view, flag ? 1 : 0);
    }

    void setColor(float r, float g, float b, float a)
    {
        if (view)
            krViewSetColorFactor(view, r, g, b, a);
    }

    void setScissorType(eScissorType type)
    {
        if (view)
            krViewSetScissorType(view, type);
    }

    void setZoom(double zoom)
    {
        if (checkView(view) == 0)
            view->zoom = float(zoom);
    }

    void setPosition(double x, double y)
    {
        if (checkView(view) == 0)
            view->posX = truncToInt(x), view->posY = truncToInt(y);
    }

    // The host has converted the point already: view units at zoom 1, and no run mode needed.
    void setEvent(eMouseButton button, eEventType type, double x, double y)
    {
        if (checkView(view) == 0)
            kriViewPickElementRun(view, eventCode(type), buttonCode(button), float(x), float(y), 1.0f);
    }

    double width() { return view ? krViewWidth(view) : 0.0; }
    double height() { return view ? krViewHeight(view) : 0.0; }
    double xPos() { return view ? krViewPosX(view) : -1.0; }
    double yPos() { return view ? krViewPosY(view) : -1.0; }

    void setProfile(bool flag) { profile = flag; }

    bool getObject(double x, double y, std::string& name)
    {
        int count = 0;
        ELEMENT_STRUCT** hits = krObjPickView(view, truncToInt(x), truncToInt(y), &count);
        if (!hits || count == 0)
            return false;
        name = krObjName(hits[count - 1]); // the topmost comes last
        return true;
    }

    std::vector<std::string> getAllVars()
    {
        std::vector<std::string> names;
        int sourceCount = 0;
        DD_DATA_TYPE_STRUCT** sources = krDataSourceGetAll(view, &sourceCount);
        for (int i = 0; i < sourceCount; ++i) {
            int variableCount = 0;
            VARIABLE_STRUCT** variables = krVarGetAll(sources[i], &variableCount);
            for (int j = 0; j < variableCount; ++j)
                names.push_back(krVarName(variables[j]));
            krFree(variables);
        }
        krFree(sources);
        return names;
    }

private:
    // Frames rendered into the plane after a start before it is only shown: the first ones
    // after startView, while the sources settle, are always rendered.
    static constexpr int kFramesAfterStart = 3;

    bool replace(VIEW_STRUCT* loaded)
    {
        if (view)
            krViewFree(view);
        view = loaded;
        return view != nullptr;
    }

    // A variable of the started view by its bare name: a stop empties the table, so a stopped
    // view finds none.
    VARIABLE_STRUCT* find(const std::string& name)
    {
        if (checkView(view) != 0 || !started)
            return nullptr;
        VARIABLE_STRUCT* variable = static_cast<VARIABLE_STRUCT*>(mpiHashSearchAscii(view->varHash, name.c_str()));
        return variable && variable->value ? variable : nullptr;
    }

    // The lock keeps the data thread of the animated mode from seeing a value half-written.
    template <class Use> bool access(const std::string& name, Use use)
    {
        VARIABLE_STRUCT* variable = find(name);
        if (!variable)
            return false;
        ViewLock lock(view);
        use(variable);
        return true;
    }

    VIEW_STRUCT* view = nullptr;
    bool started = false;
    bool animated = false;
    int32_t renderMode = eRenderDirect;
    int32_t framesToRender = 1;
    bool profile = false;
};

KorelView::KorelView() : impl_(new KorelViewImpl)
{
    setlocale(LC_NUMERIC, "C");
}

KorelView::~KorelView()
{
    delete impl_;
}

bool KorelView::load(const std::string& path) { return impl_->load(path); }
bool KorelView::load(const void* data, uint32_t size) { return impl_->load(data, size); }
bool KorelView::setVar(const std::string& name, long value) { return impl_->setVar(name, value); }
bool KorelView::setVar(const std::string& name, double value) { return impl_->setVar(name, value); }
bool KorelView::setVar(const std::string& name, const std::string& value) { return impl_->setVar(name, value); }
bool KorelView::getVar(const std::string& name, long& value) { return impl_->getVar(name, value); }
bool KorelView::getVar(const std::string& name, double& value) { return impl_->getVar(name, value); }
bool KorelView::getVar(const std::string& name, std::string& value) { return impl_->getVar(name, value); }
bool KorelView::startView(bool animated) { return impl_->startView(animated); }
bool KorelView::stopView() { return impl_->stopView(); }
bool KorelView::draw(bool force) { return impl_->draw(force); }
void KorelView::setRenderMode(eRenderMode mode) { impl_->setRenderMode(mode); }
void KorelView::setBackgroundMode(bool flag) { impl_->setBackgroundMode(flag); }
void KorelView::setUseDepthBuffer(bool flag) { impl_->setUseDepthBuffer(flag); }
void KorelView::setUseLineScaling(bool flag) { impl_->setUseLineScaling(flag); }
void KorelView::setColor(float r, float g, float b, float a) { impl_->setColor(r, g, b, a); }
void KorelView::setScissorType(eScissorType type) { impl_->setScissorType(type); }
void KorelView::setZoom(double zoom) { impl_->setZoom(zoom); }
void KorelView::setPosition(double x, double y) { impl_->setPosition(x, y); }
void KorelView::setEvent(eMouseButton button, eEventType type, double x, double y) { impl_->setEvent(button, type, x, y); }
double KorelView::width() { return impl_->width(); }
double KorelView::height() { return impl_->height(); }
double KorelView::xPos() { return impl_->xPos(); }
double KorelView::yPos() { return impl_->yPos(); }
void KorelView::setLogLevel(eLogLevel level) { ::setLogLevel(level); }
void KorelView::setProfile(bool flag) { impl_->setProfile(flag); }
bool KorelView::getObject(double x, double y, std::string& name) { return impl_->getObject(x, y, name); }
std::vector<std::string> KorelView::getAllVars() { return impl_->getAllVars(); }

} // namespace Korel2D
