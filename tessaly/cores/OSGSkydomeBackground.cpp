#include <Tessaly/OSGSkydomeBackground.h>

#include <OpenSG/OSGCamera.h>
#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDrawActionBase.h>
#include <OpenSG/OSGGL.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGMaterial.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGState.h>
#include <OpenSG/OSGTextureChunk.h>
#include <OpenSG/OSGViewport.h>

OSG_BEGIN_NAMESPACE

namespace
{

void drawSphere(GLint resolution)
{
    GLUquadric *const quadric = gluNewQuadric();
    gluQuadricTexture(quadric, GL_TRUE);
    gluQuadricOrientation(quadric, GLU_OUTSIDE);
    gluQuadricNormals(quadric, GLU_SMOOTH);
    gluSphere(quadric, 1.0, resolution, resolution);
    gluDeleteQuadric(quadric);
}

} // namespace

void SkydomeBackground::initMethod() {}

SkydomeBackground::SkydomeBackground() = default;

SkydomeBackground::SkydomeBackground(const SkydomeBackground &source)
    : Inherited(source),
      _keptTexture(getLatlongTexture()),
      _keptSphere(getSphere()),
      _keptBeacon(getBeacon()),
      _keptMaterial(getMaterial())
{
}

SkydomeBackground::~SkydomeBackground() = default;

void SkydomeBackground::onCreate(const SkydomeBackground *source)
{
    Inherited::onCreate(source);
    _keptTexture.adopt();
    _keptSphere.adopt();
    _keptBeacon.adopt();
    _keptMaterial.adopt();
}

void SkydomeBackground::onDestroy()
{
    _keptTexture.release();
    _keptSphere.release();
    _keptBeacon.release();
    _keptMaterial.release();
    Inherited::onDestroy();
}

void SkydomeBackground::setLatlongTexture(const TextureChunkPtr &value)
{
    _keptTexture.keep(value);
    Inherited::setLatlongTexture(_keptTexture.get());
}

void SkydomeBackground::setSphere(const NodePtr &value)
{
    _keptSphere.keep(value);
    Inherited::setSphere(_keptSphere.get());
}

void SkydomeBackground::setBeacon(const NodePtr &value)
{
    _keptBeacon.keep(value);
    Inherited::setBeacon(_keptBeacon.get());
}

void SkydomeBackground::setMaterial(const MaterialPtr &value)
{
    _keptMaterial.keep(value);
    Inherited::setMaterial(_keptMaterial.get());
}

void SkydomeBackground::followReferences(BitVector whichField, UInt32 origin)
{
    if((whichField & LatlongTextureFieldMask) != 0)
        _keptTexture.follow(getLatlongTexture(), origin);
    if((whichField & SphereFieldMask) != 0)
        _keptSphere.follow(getSphere(), origin);
    if((whichField & BeaconFieldMask) != 0)
        _keptBeacon.follow(getBeacon(), origin);
    if((whichField & MaterialFieldMask) != 0)
        _keptMaterial.follow(getMaterial(), origin);
}

void SkydomeBackground::changed(BitVector whichField, UInt32 origin)
{
    followReferences(whichField, origin);
    if((whichField & LatlongTextureFieldMask) != 0 && getLatlongTexture() != NullFC)
    {
        const ChunkMaterialPtr made = ChunkMaterial::create();
        beginEditCP(made, ChunkMaterial::ChunksFieldMask);
        made->addChunk(getLatlongTexture(), State::AutoSlot);
        endEditCP(made, ChunkMaterial::ChunksFieldMask);
        // Straight into the field, with no reference taken on it and none given back for what stood there;
        // that is meant.
        _sfMaterial.setValue(made);
    }
    Inherited::changed(whichField, origin);
}

void SkydomeBackground::dump(UInt32, const BitVector) const
{
    SLOG << "Dump SkydomeBackground NI" << std::endl;
}

void SkydomeBackground::loadMatrices(DrawActionBase *action, Viewport *port)
{
    const UInt32 width = UInt32(port->getPixelWidth());
    const UInt32 height = UInt32(port->getPixelHeight());
    Camera *const camera = action->getCamera();
    Matrix viewing;
    Matrix matrix;
    camera->getViewing(viewing, width, height);
    camera->getProjectionTranslation(matrix, width, height);
    matrix.mult(viewing);
    if(getBeacon() != NullFC)
        matrix.mult(getBeacon()->getToWorld());
    // Only the turn is left, so the eye is always in the sphere's middle.
    matrix.setTranslate(0.0f, 0.0f, 0.0f);
    // The quadric's poles lie on z and its texture is seen from outside: the poles go to y, and x is
    // mirrored.
    glLoadMatrixf(matrix.getValues());
    glScalef(-1.0f, 1.0f, 1.0f);
    glRotatef(-90.0f, 1.0f, 0.0f, 0.0f);
    glRotatef(90.0f, 0.0f, 0.0f, 1.0f);

    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    // Everything gets one depth, whatever the near and far planes cut off of a unit sphere.
    glTranslatef(0.0f, 0.0f, 0.5f);
    glScalef(1.0f, 1.0f, 0.0f);
    Matrix projection;
    camera->getProjection(projection, width, height);
    glMultMatrixf(projection.getValues());
}

void SkydomeBackground::clear(DrawActionBase *action, Viewport *port)
{
    glPushAttrib(GL_LIGHTING_BIT | GL_POLYGON_BIT | GL_DEPTH_BUFFER_BIT);
    glClear(GL_COLOR_BUFFER_BIT | GL_STENCIL_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glDisable(GL_LIGHTING);
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    glDisable(GL_DEPTH_TEST);

    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    loadMatrices(action, port);

    getMaterial()->getState()->activate(action);
    // The material may have its own idea of it.
    glPolygonMode(GL_FRONT_AND_BACK, GL_FILL);
    drawSphere(GLint(getSphereRes()));
    getMaterial()->getState()->deactivate(action);

    // A material may have switched writing depth on; the scene is to lie in front of all of it.
    glClear(GL_DEPTH_BUFFER_BIT);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
    glPopAttrib();
    glColor3f(1.0f, 1.0f, 1.0f);
}

OSG_END_NAMESPACE
