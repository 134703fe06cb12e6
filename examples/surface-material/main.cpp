/// \file
/// A material that carries surface parameters, and a shader of the host that reads them: eight balls, from
/// left to right with growing shininess, below with a Fresnel rim. Draws to a PNG file, whose name is the
/// argument.

#include <OpenSG/OSGDirectionalLight.h>
#include <OpenSG/OSGEGLWindow.h>
#include <OpenSG/OSGGeometry.h>
#include <OpenSG/OSGGrabForeground.h>
#include <OpenSG/OSGImage.h>
#include <OpenSG/OSGMatrixUtility.h>
#include <OpenSG/OSGNode.h>
#include <OpenSG/OSGPerspectiveCamera.h>
#include <OpenSG/OSGRenderAction.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGSimpleGeometry.h>
#include <OpenSG/OSGSolidBackground.h>
#include <OpenSG/OSGTransform.h>
#include <OpenSG/OSGViewport.h>
#include <Tessaly/OSGCommonSurfaceShaderMaterial.h>
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

const char *const fragmentProgram = R"(uniform vec3 ambientFactor;
uniform vec3 diffuseFactor;
uniform vec3 specularFactor;
uniform vec3 environmentFactor;
uniform float shininessFactor;
uniform float fresnelBlend;
varying vec3 normal;

void main()
{
    vec3 n = normalize(normal);
    vec3 towards = normalize(gl_LightSource[0].position.xyz);
    vec3 between = normalize(towards + vec3(0.0, 0.0, 1.0));
    vec3 color = diffuseFactor * (ambientFactor + max(dot(n, towards), 0.0));
    color += specularFactor * pow(max(dot(n, between), 0.0), 128.0 * shininessFactor);
    float rim = fresnelBlend * pow(1.0 - max(n.z, 0.0), 3.0);
    gl_FragColor = vec4(mix(color, environmentFactor, rim), 1.0);
}
)";

/// The material itself draws as any ChunkMaterial; this hands its values to a shader.
void addShader(const CommonSurfaceShaderMaterialPtr &material)
{
    const SHLChunkPtr shader = SHLChunk::create();
    shader->setVertexProgram(vertexProgram);
    shader->setFragmentProgram(fragmentProgram);
    shader->setUniformParameter("ambientFactor", material->getAmbientFactor());
    shader->setUniformParameter("diffuseFactor", material->getDiffuseFactor());
    shader->setUniformParameter("specularFactor", material->getSpecularFactor());
    shader->setUniformParameter("environmentFactor", material->getEnvironmentFactor());
    shader->setUniformParameter("shininessFactor", material->getShininessFactor());
    shader->setUniformParameter("fresnelBlend", material->getFresnelBlend());
    endEditCP(shader);
    material->addChunk(shader);
    endEditCP(material);
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
        background->setColor(Color3f(0.85f, 0.87f, 0.90f));
        endEditCP(background);
        const DirectionalLightPtr light = DirectionalLight::create();
        const NodePtr root = makeNodeFor(light);
        light->setBeacon(root);
        light->setDirection(Vec3f(-0.6f, 0.8f, 0.7f));
        endEditCP(light);
        for(int i = 0; i < 8; ++i)
        {
            const int column = i % 4;
            const CommonSurfaceShaderMaterialPtr material = CommonSurfaceShaderMaterial::create();
            beginEditCP(material);
            material->setDiffuseFactor(Vec3f(0.55f, 0.12f + 0.1f * Real32(column), 0.12f));
            material->setSpecularFactor(Vec3f(0.8f, 0.8f, 0.8f));
            material->setShininessFactor(0.02f * std::pow(3.f, Real32(column)));
            material->setFresnelBlend(i < 4 ? 0.f : 0.9f);
            endEditCP(material);
            addShader(material);

            const GeometryPtr sphere = makeSphereGeo(6, 0.9f);
            sphere->setMaterial(material);
            endEditCP(sphere);
            Matrix matrix;
            matrix.setTranslate(2.f * Real32(column) - 3.f, i < 4 ? 1.f : -1.f, 0);
            const TransformPtr place = Transform::create();
            place->setMatrix(matrix);
            const NodePtr node = makeNodeFor(place);
            node->addChild(makeNodeFor(sphere));
            endEditCP(node);
            root->addChild(node);
        }

        Matrix eye;
        MatrixLookAt(eye, Pnt3f(0.f, 0.f, 16.f), Pnt3f(0.f, 0.f, 0.f), Vec3f(0, 1, 0));
        const TransformPtr place = Transform::create();
        place->setMatrix(eye);
        const NodePtr beacon = makeNodeFor(place);
        root->addChild(beacon);
        endEditCP(root);
        const PerspectiveCameraPtr camera = PerspectiveCamera::create();
        camera->setBeacon(beacon);
        camera->setFov(0.28f);
        camera->setNear(0.1f);
        camera->setFar(100.f);
        endEditCP(camera);
        const ImagePtr picture = Image::create();
        picture->set(Image::OSG_RGB_PF, 880, 460);
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
        window->resize(880, 460);
        window->addPort(viewport);
        window->init();
        const std::unique_ptr<RenderAction> action(RenderAction::create());
        window->render(action.get());
        written = picture->write(argc > 1 ? argv[1] : "surface-material.png");
        subRefCP(window);
    }
    osgExit();
    return written ? 0 : 1;
}
