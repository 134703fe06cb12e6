#ifndef _OSGPERMUTATIONSHLCHUNK_H_
#define _OSGPERMUTATIONSHLCHUNK_H_

/// \file
/// A shader chunk that keeps one program for each rendering state.

#include <map>
#include <memory>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <OpenSG/OSGSHLChunk.h>
#include <OpenSG/OSGShaderParameterAccess.h>
#include <Tessaly/OSGPermutationSHLChunkBase.h>

OSG_BEGIN_NAMESPACE

/// Stands in a material in place of an SHLChunk and never compiles its own programs. At each activation a
/// text of defines is worked out from the state (lights, stereo eye, fog) and the permutation parameters; the
/// chunk made of the programs with that text ahead is looked up, or made, and activated instead. The text
/// stands behind the prefix of each program:
///
///     #define OSG_LIGHT_0_ACTIVE 1          ... up to light 7
///     #define OSG_ACTIVE_LIGHTS_COUNT 1
///     #define OSG_ACTIVE_LIGHTS_MASK 1
///     #define OSG_STEREO_LEFT_EYE -1        -1 no stereo, 0 right, 1 left
///     #define OSG_FOG 0                     0 off, 1 linear, 2 exponential, 3 squared exponential
///     #define NAME value                    one for each permutation parameter, without a line end
///
/// No line end follows a parameter's value, so with several parameters each string value ends with its own.
///
/// Uniforms are set on this chunk as on any SHLChunk; they are handed to a permutation when it becomes the
/// current one, and when the field `parameters` has changed. Up to 128 permutations are kept; with more, or
/// behind a change of a program text or a prefix, all are dropped. Those that are left when the chunk ends
/// are not dropped, which is meant: a host that wants them gone closes an edit of a program first.
///
/// Drawing takes the GL context of the action's window and runs on the drawing thread of an aspect; each
/// aspect has permutations of its own.
class OSG_TESSALY_DLLMAPPING PermutationSHLChunk : public PermutationSHLChunkBase
{
  public:
    typedef PermutationSHLChunkBase Inherited;

    /// Gives the compile-time parameter of that name a text, in an edit of its own; without one appends a
    /// ShaderParameterString, the edit of the field being the caller's. False for a null name, and, with a
    /// warning, where it has another type.
    bool setPermutationParameter(const char *name, const std::string &value);
    /// False for a null name, and, with a warning, where there is none of that name or it is no string.
    bool getPermutationParameter(const char *name, std::string &value);
    /// False if there is none of that name.
    bool subPermutationParameter(const char *name);
    /// Takes all away.
    void clearPermutationParameters();

    /// Does nothing: the uniforms that follow the matrices are those of the permutation.
    void update(DrawActionBase *action) override;
    /// The field of that name.
    bool isTransparent() const override;
    Real32 switchCost(StateChunk *chunk) override;

    bool operator<(const StateChunk &other) const override;
    bool operator==(const StateChunk &other) const override;
    bool operator!=(const StateChunk &other) const override;

    /// For tests and statistics, of this aspect's copy: how many permutations and texts of states are kept,
    /// and how often uniforms were handed over.
    UInt32 getNumPermutations() const { return UInt32(_permutations.size()); }
    UInt32 getNumStateTexts() const { return UInt32(_osgDefineCache.size()); }
    UInt32 getNumUniformUpdates() const { return _numUniformUpdates; }

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    PermutationSHLChunk();
    /// Permutations are not copied.
    PermutationSHLChunk(const PermutationSHLChunk &source);
    ~PermutationSHLChunk() override;

    /// A copy shares the parameters.
    void onCreate(const PermutationSHLChunk *source = nullptr);
    void onDestroy() override;

    void activate(DrawActionBase *action, UInt32 index = 0) override;
    /// From another PermutationSHLChunk, this one included; with any other a warning, and nothing is
    /// activated.
    void changeFrom(DrawActionBase *action, StateChunk *old, UInt32 index = 0) override;
    void deactivate(DrawActionBase *action, UInt32 index = 0) override;

    /// The text for lights, eye and fog.
    void appendOSGPermutationParameters(std::stringstream &stream, DrawActionBase *action);
    /// The text for the parameters that a host has set.
    void appendPermutationParameters(std::stringstream &stream);
    /// Null where there is none for that text.
    SHLChunkPtr findPermutation(const std::string &key);
    /// Makes the program for that text.
    SHLChunkPtr createPermutation(const std::string &key);
    /// Hands all uniforms to the current permutation.
    void updateParameters();
    /// Drops all permutations. The texts of states are kept.
    void clearPermutationCache();

  private:
    friend class FieldContainer;
    friend class PermutationSHLChunkBase;

    static void initMethod();

    ShaderParameterAccess &parameterAccess();
    /// Whether the state of that number and the permutation parameters, which are written to `_parameters`, are
    /// those that the current permutation was selected for, and it is still kept.
    bool isUnchanged(UInt32 state);

    std::unique_ptr<ShaderParameterAccess> _parameterAccess; ///< over permutationParameters
    /// By the whole text of defines. `create` of a permutation gives the reference that is taken back when it
    /// is dropped.
    std::map<std::string, SHLChunkPtr> _permutations;
    SHLChunkPtr _current; ///< selected last; not counted, and may be gone behind a drop of all permutations
    /// Of that container; by it one that is gone is told from a new one at its address.
    UInt32 _currentId = 0;
    bool _currentCached = false;    ///< it is among the permutations
    UInt32 _currentState = 0;       ///< the state's number when it was selected
    std::string _currentParameters; ///< and the defines of the permutation parameters
    std::string _parameters;        ///< those of now; a member so that its memory is used again
    bool _parametersChanged = false;
    std::vector<std::pair<UInt32, std::string>> _osgDefineCache; ///< by number of the state
    UInt32 _numUniformUpdates = 0;
};

OSG_END_NAMESPACE

#endif
