/// \file
/// The way of a lens filter's program into the read-back group.

#include "LensProgram.h"

#include <OpenSG/OSGChunkMaterial.h>
#include <OpenSG/OSGDisplayFilterForeground.h>
#include <OpenSG/OSGDisplayFilterGroup.h>
#include <OpenSG/OSGLog.h>
#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGTextureFunctions.h>
#include <OpenSG/OSGViewport.h>
#include <OpenSG/OSGWindow.h>

namespace tessaly
{

using namespace osg;

SHLChunkPtr addLensProgram(DisplayFilterForeground &foreground, const Viewport *port,
                           const std::string &vertexText, const std::string &fragmentText)
{
    const WindowPtr window = port != nullptr ? port->getParent() : WindowPtr();
    if(window != NullFC && !TextureFunctions(window.get()).hasNonPowerOf2)
        FWARNING(("Lens filter: without GL_ARB_texture_non_power_of_two the picture is only right where its "
                  "sides are powers of two\n"));

    const SHLChunkPtr program = SHLChunk::create();
    beginEditCP(program);
    program->setVertexProgram(vertexText);
    program->setFragmentProgram(fragmentText);
    endEditCP(program);

    const ChunkMaterialPtr material = foreground.findReadbackGroup("ColorDisplayFilter")->getMaterial();
    beginEditCP(material);
    material->addChunk(program, State::AutoSlot);
    endEditCP(material);
    return program;
}

} // namespace tessaly
