/// \file
/// Every program that can be joined, compiled and linked by the driver.

#include "VolumeStage.h"

#include "BlockSkippingTraversal.h"
#include "DVRShading.h"
#include "DVRShadingAndLighting.h"
#include "InterleavedRay.h"
#include "MIPShading.h"
#include "OnlineCentralDiffNormal.h"
#include "OnlineSobelNormal.h"
#include "PassText.h"
#include "PreCentralDiffNormal.h"
#include "PreintTransferFunction.h"
#include "ProgramText.h"
#include "SimpleRay.h"
#include "SimpleTransferfunction.h"
#include "SimpleTraversal.h"
#include "XRayShading.h"

#include <OpenSG/OSGBaseInitFunctions.h>

#include <set>

namespace
{

class VolumePrograms : public ::testing::Test
{
protected:
    static void SetUpTestSuite() { osg::osgInit(0, nullptr); }

    VolumePrograms()
    {
        window = osg::EGLWindow::create();
        osg::addRefCP(window);
        window->resize(16, 16);
        window->init();
        window->activate();
        window->frameInit();
    }
    ~VolumePrograms() override
    {
        window->deactivate();
        osg::subRefCP(window);
    }

    /// Whether the window has made a program of the texts.
    bool links(const std::string &vertex, const std::string &fragment)
    {
        const osg::SHLChunkPtr chunk = osg::SHLChunk::create();
        osg::addRefCP(chunk);
        osg::beginEditCP(chunk);
        chunk->setVertexProgram(vertex);
        chunk->setFragmentProgram(fragment);
        osg::endEditCP(chunk);
        window->validateGLObject(chunk->getGLId());
        const bool made = window->getGLObjectId(chunk->getGLId()) != 0;
        osg::subRefCP(chunk);
        window->frameExit();
        return made;
    }

    osg::EGLWindowPtr window;
};

TEST_F(VolumePrograms, OfEveryCombinationOfTextsAndFormsCompileAndLink)
{
    // The texts of each hook, with the form of the tables and the gradient term.
    const std::set<std::string> rays = {SimpleRay().getShaderCode(), InterleavedRay().getShaderCode()};
    const std::set<std::string> normals = {PreCentralDiffNormal(osg::NullFC).getShaderCode(),
                                           OnlineCentralDiffNormal().getShaderCode(),
                                           OnlineSobelNormal().getShaderCode()};
    std::set<std::string> transfers;
    for(const osg::UInt32 form : {0u, 1u})
    {
        SimpleTransferfunction single;
        single.dependentTexture = form;
        transfers.insert(single.getShaderCode());
        PreintTransferFunction pairs;
        pairs.dependentTexture = form;
        transfers.insert(pairs.getShaderCode());
    }
    std::set<std::string> shadings = {MIPShading().getShaderCode(), XRayShading().getShaderCode()};
    for(const bool modulated : {false, true})
    {
        DVRShading plain;
        plain.gradientModulation = modulated;
        shadings.insert(plain.getShaderCode());
        DVRShadingAndLighting lit;
        lit.gradientModulation = modulated;
        shadings.insert(lit.getShaderCode());
    }
    const std::set<std::string> traversals = {SimpleTraversal().getShaderCode(),
                                              BlockSkippingTraversal().getShaderCode()};

    const osg::LogCapture log;
    int programs = 0;
    for(const std::string &ray : rays)
        for(const std::string &normal : normals)
            for(const std::string &transfer : transfers)
                for(const std::string &shading : shadings)
                    for(const std::string &traversal : traversals)
                    {
                        const std::string text =
                            tessaly::joinFragmentProgram(ray, normal, transfer, shading, traversal);
                        EXPECT_TRUE(links(tessaly::programVertexText, text)) << text;
                        ++programs;
                    }
    EXPECT_EQ(programs, 2 * 3 * 4 * 6 * 2);
    EXPECT_EQ(test::complaintsIn(log), "");
}

TEST_F(VolumePrograms, OfTheSetUpPassesCompileAndLink)
{
    const osg::LogCapture log;
    EXPECT_TRUE(links(tessaly::planeVertexText, tessaly::planeFragmentText));
    EXPECT_TRUE(links(tessaly::faceVertexText, tessaly::faceFragmentText));
    EXPECT_TRUE(links(tessaly::exitVertexText, tessaly::exitFragmentText));
    EXPECT_EQ(test::complaintsIn(log), "");
}

TEST_F(VolumePrograms, ThatAreBrokenAreToldFromThoseThatAreNot)
{
    const osg::LogCapture log;
    EXPECT_FALSE(links(tessaly::planeVertexText, "void main() { gl_FragColor = nothing; }"));
    EXPECT_EQ(log.count(osg::LOG_WARNING), 1u);
}

} // namespace
