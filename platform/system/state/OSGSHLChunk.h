#ifndef _OSGSHLCHUNK_H_
#define _OSGSHLCHUNK_H_

/// \file
/// A GLSL program with its uniforms.

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "OSGSHLChunkBase.h"
#include "OSGShaderFunctions.h"

OSG_BEGIN_NAMESPACE

class Window;

/// A GLSL program with its uniforms.
///
/// The program belongs to a window. It is compiled when the chunk is first activated there, and again only
/// behind an edit that changed a text, a program parameter or an attribute. Texts that bend the language
/// are adapted by adaptShader first. A text that does not compile, and a program that does not link, is
/// reported once for each window and change, with the text's line numbers and the driver's words; the fixed
/// pipeline then draws in its place.
///
/// Uniforms are sent when the chunk is activated, and only those whose values differ from what the program
/// has. A parameter that the program does not use is passed over. These uniforms have meanings of their
/// own, and are set where a program uses them, whatever parameters say:
///
/// - mat4 OSGWorldMatrix, OSGInvWorldMatrix, OSGTransInvWorldMatrix: from object to world coordinates, its
///   inverse, and the transpose of that;
/// - mat4 OSGCameraOrientation, vec3 OSGCameraPosition: where the camera is, in world coordinates;
/// - mat4 OSGViewMatrix, OSGInvViewMatrix: from world to eye coordinates, and its inverse;
/// - mat4 OSGModelViewMatrix: what GL has as model-view matrix;
/// - int OSGActiveLightsMask: bit i is set if light i is on.
class OSG_SYSTEMLIB_DLLMAPPING SHLChunk : public SHLChunkBase
{
  public:
    typedef SHLChunkBase Inherited;

    const StateChunkClass *getClass() const override { return &_class; }
    static const StateChunkClass *getStaticClass() { return &_class; }
    static UInt32 getStaticClassId() { return _class.getId(); }

    /// Sets a program parameter, as glProgramParameteri takes it; kept in two fields, whose edit the caller
    /// closes.
    void setProgramParameter(GLenum name, UInt32 value);
    /// 0 where it is not set.
    UInt32 getProgramParameter(GLenum name) const;
    /// False if it is not set.
    bool subProgramParameter(GLenum name);
    /// Takes all away.
    void clearProgramParameters();

    /// Gives a vertex attribute its location; kept in two fields, whose edit the caller closes.
    void setAttributeLocation(const std::string &name, Int32 location);

    /// For an active chunk: brings the uniforms up to date, behind a change of the matrices for instance.
    void update(DrawActionBase *action) override;
    void activate(DrawActionBase *action, UInt32 index = 0) override;
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    /// For tests and statistics, of this aspect's copy: how often a program was compiled, and how many
    /// uniforms were sent.
    UInt32 getNumCompiles() const { return _numCompiles; }
    UInt32 getNumUniformsSent() const { return _numUniformsSent; }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    SHLChunk();
    SHLChunk(const SHLChunk &source);
    ~SHLChunk() override;

    void onCreate(const SHLChunk *source = nullptr);
    void onDestroy() override;

    void handleGL(Window *win, UInt32 idstatus);

  private:
    friend class FieldContainer;
    friend class SHLChunkBase;

    static void initMethod();

    /// What a program is made from.
    struct Source
    {
        std::string vertex;
        std::string geometry;
        std::string fragment;
        std::vector<std::pair<UInt32, UInt32>> parameters;
        std::vector<std::pair<std::string, Int32>> attributes;

        bool operator==(const Source &other) const
        {
            return vertex == other.vertex && geometry == other.geometry && fragment == other.fragment &&
                   parameters == other.parameters && attributes == other.attributes;
        }
    };

    /// A uniform of a linked program.
    struct UniformSlot
    {
        bool known = false; ///< the location has been looked up
        std::string name;
        Int32 location = -1;
        UInt32 typeId = 0;
        std::vector<UInt8> sent; ///< the bytes of the value that the program has; empty for none yet
    };

    /// One window's program.
    struct WindowProgram
    {
        GLSLFunctions functions;
        UInt32 program = 0; ///< 0 where there is none that could be used
        bool made = false;  ///< `source` has been compiled, with whatever success
        Source source;
        std::vector<UniformSlot> slots; ///< in the order of the parameters
        /// Which of those with meanings the program uses, and where.
        std::vector<std::pair<UInt32, Int32>> systemUniforms;
    };

    Source currentSource() const;
    /// A program from the source of `target`; 0 where that is empty, and, with one message, where it fails.
    UInt32 makeProgram(WindowProgram &target);
    /// A compiled shader, 0 with one message where that fails.
    static UInt32 compile(const GLSLFunctions &gl, const std::string &text, ShaderStage stage);
    /// Uses the window's program, if there is one, and sends the uniforms. False where there is none.
    bool use(DrawActionBase *action);
    void sendParameters(WindowProgram &program);
    void sendSystemUniforms(DrawActionBase *action, const WindowProgram &program);

    static StateChunkClass _class;

    std::map<Window *, WindowProgram> _windows;
    UInt32 _numCompiles = 0;
    UInt32 _numUniformsSent = 0;
};

OSG_END_NAMESPACE

#endif
