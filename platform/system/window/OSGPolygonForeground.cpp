/// \file
/// Draws a polygon over the scene.

#include "OSGPolygonForeground.h"

#include "OSGDrawActionBase.h"
#include "OSGGL.h"
#include "OSGLog.h"
#include "OSGMaterial.h"
#include "OSGState.h"
#include "OSGViewport.h"

OSG_BEGIN_NAMESPACE

void PolygonForeground::initMethod() {}

PolygonForeground::PolygonForeground() = default;

PolygonForeground::PolygonForeground(const PolygonForeground &source) : Inherited(source) {}

PolygonForeground::~PolygonForeground() = default;

void PolygonForeground::onCreate(const PolygonForeground *source)
{
    addRefCP(_sfMaterial.getValue());
    Inherited::onCreate(source);
}

void PolygonForeground::onDestroy()
{
    clearRefCP(_sfMaterial.getValue());
    Inherited::onDestroy();
}

void PolygonForeground::setMaterial(const MaterialPtr &value)
{
    setRefdCP(_sfMaterial.getValue(), MaterialPtr(value));
}

void PolygonForeground::draw(DrawActionBase *action, Viewport *port)
{
    const MaterialPtr material = getMaterial();
    if(!getActive() || material == NullFC || action == nullptr || port == nullptr)
        return;
    const UInt32 corners = getPositions().size();
    const UInt32 texCoords = getTexCoords().size();
    const StatePtr state = material->getState();
    if(corners < 3 || (texCoords != 0 && texCoords != corners) || state == NullFC)
        return;

    // A picture plane in the units of the positions.
    glPushAttrib(GL_LIGHTING_BIT | GL_DEPTH_BUFFER_BIT | GL_ENABLE_BIT | GL_POLYGON_BIT | GL_CURRENT_BIT);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0.0, getNormalizedX() ? 1.0 : port->getPixelWidth(), 0.0,
            getNormalizedY() ? 1.0 : port->getPixelHeight(), -1.0, 1.0);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
    glDisable(GL_LIGHTING);
    glDisable(GL_DEPTH_TEST);
    glColor4f(1.0f, 1.0f, 1.0f, 1.0f);

    state->activate(action);
    glBegin(GL_POLYGON);
    for(UInt32 i = 0; i < corners; ++i)
    {
        if(texCoords != 0)
            glTexCoord3fv(getTexCoords(i).getValues());
        glVertex2fv(getPositions(i).getValues());
    }
    glEnd();
    state->deactivate(action);

    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopAttrib();
}

void PolygonForeground::changed(BitVector whichField, UInt32 origin)
{
    Inherited::changed(whichField, origin);
}

void PolygonForeground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump PolygonForeground NI" << std::endl;
}

OSG_END_NAMESPACE
