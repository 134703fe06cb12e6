/// \file
/// One shader under four light set-ups: the ring on the left stands in the dark, the others below one, two
/// and three lights. The text loops over the lights that the defines name, so four programs are made of it,
/// and no loop is longer than it must be. Draws to a PNG file, whose name is the argument.

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGPermutationSHLChunk.h>
#include <Tessaly/Tessaly.h>

#include <memory>

OSG_USING_NAMESPACE

namespace
{

const char *const vertexProgram = R"(varying vec3 normal;

void main()
{
    normal = gl_NormalMatrix * gl_Normal;
    gl_Position = ftransform();
}
)";

const char *const fragmentProgram = R"(uniform vec3 color;
varying vec3 normal;

vec3 lit(int light, vec3 n)
{
    vec3 towards = normalize(gl_LightSource[light].position.xyz);
    float highlight = pow(max(dot(n, normalize(towards + vec3(0.0, 0.0, 1.0))), 0.0), 60.0);
    return gl_LightSource[light].diffuse.rgb * (color * max(dot(n, towards), 0.0) + 0.5 * highlight);
}

void main()
{
    vec3 n = normalize(normal);
#if OSG_ACTIVE_LIGHTS_COUNT == 0
    // Without any light, the outline.
    gl_FragColor = vec4(color * pow(1.0 - n.z, 2.0), 1.0);
#else
    vec3 sum = AMBIENT * color;
#if OSG_LIGHT_0_ACTIVE
    sum += lit(0, n);
#endif
#if OSG_LIGHT_1_ACTIVE
    sum += lit(1, n);
#endif
#if OSG_LIGHT_2_ACTIVE
    sum += lit(2, n);
#endif
    gl_FragColor = vec4(sum, 1.0);
#endif
}
)";

/// A light that comes from the direction, above what is already there.
NodePtr below(const NodePtr &node, const NodePtr &beacon, const Vec3f &direction, const Color4f &color)
{
    const DirectionalLightPtr light = DirectionalLight::create();
    light->setBeacon(beacon);
    light->setDirection(direction);
    light->setDiffuse(color);
    endEditCP(light);
    const NodePtr above = makeNodeFor(light);
    above->addChild(node);
    endEditCP(above);
    return above;
}

} // namespace

int main(int argc, char **argv)
{
    initTessalyExtention();
    if(!osgInit(argc, argv))
        return 1;
    bool written = false;
    {
        const SolidBackgroundPtr background = SolidBackground::create();
        background->setColor(Color3f(0.09f, 0.10f, 0.12f));
        endEditCP(background);
        const PermutationSHLChunkPtr shader = PermutationSHLChunk::create();
        shader->setVertexProgramPrefix("#version 110");
        shader->setVertexProgram(vertexProgram);
        shader->setFragmentProgramPrefix("#version 110");
        shader->setFragmentProgram(fragmentProgram);
        shader->setUniformParameter("color", Vec3f(0.75f, 0.72f, 0.68f));
        shader->setPermutationParameter("AMBIENT", "0.06");
        endEditCP(shader);
        const ChunkMaterialPtr material = ChunkMaterial::create();
        material->addChunk(shader);
        endEditCP(material);

        const Vec3f directions[] = {Vec3f(-0.8f, 0.7f, 0.5f), Vec3f(0.9f, 0.1f, 0.3f),
                                    Vec3f(0.f, -0.9f, 0.2f)};
        const Color4f colors[] = {Color4f(1.f, 0.85f, 0.6f, 1), Color4f(0.25f, 0.45f, 1.f, 1),
                                  Color4f(0.9f, 0.2f, 0.35f, 1)};
        const NodePtr root = makeCoredNode<Group>();
        for(int lights = 0; lights < 4; ++lights)
        {
            const GeometryPtr torus = makeTorusGeo(0.3f, 0.65f, 48, 64);
            torus->setMaterial(material);
            endEditCP(torus);
            Matrix matrix;
            matrix.setRotate(Quaternion(Vec3f(1, 0.4f, 0), 0.7f));
            matrix.setTranslate(2.2f * Real32(lights) - 3.3f, 0, 0);
            const TransformPtr place = Transform::create();
            place->setMatrix(matrix);
            NodePtr node = makeNodeFor(place);
            node->addChild(makeNodeFor(torus));
            endEditCP(node);
            for(int i = lights - 1; i >= 0; --i)
                node = below(node, root, directions[i], colors[i]);
            root->addChild(node);
        }

        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0.f, 0.f, 9.f), Pnt3f(0.f, 0.f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        root->addChild(beacon);
        endEditCP(root);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.3f);
        camera->setNear(0.1f);
        camera->setFar(100.f);
        endEditCP(camera);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 1000, 300);
        const GrabForegroundPtr grab = GrabForeground::create();
        grab->setImage(picture);
        endEditCP(grab);
        const ViewportPtr viewport = Viewport::create();
        viewport->setCamera(camera);
        viewport->setRoot(root);
        viewport->setBackground(background);
        viewport->getForegrounds().push_back(grab);
        endEditCP(viewport);

        const EGLWindowPtr window = EGLWindow::create();
        addRefCP(window);
        window->resize(1000, 300);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "permutations.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
