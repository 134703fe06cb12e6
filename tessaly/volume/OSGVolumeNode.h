#ifndef _OSGVOLUMENODE_H_
#define _OSGVOLUMENODE_H_

/// \file
/// The core that holds one volume.

#include <OpenSG/OSGAction.h>
#include <OpenSG/OSGHeldReferences.h>
#include <OpenSG/OSGMatrix.h>
#include <OpenSG/OSGVolume.h>
#include <Tessaly/OSGKeptPointer.h>
#include <Tessaly/OSGVolumeNodeBase.h>

class VolumeNodeHandler;

OSG_BEGIN_NAMESPACE

/// A volume in the scene. Goes under a node, and into `volumeNodes` of a VolumeViewport that stands ahead of
/// the viewport that shows the scene. Any other children of the node are removed when the viewport takes it
/// over.
///
/// A change of voxels, swapped or sliceThickness makes a new handler at once, on the thread that edits; all
/// other changes take effect with the viewport's next frame. Each aspect has a handler of its own. The voxels
/// of a volume are normalised once: where they come from another aspect, that one has done it.
///
/// References: one is held on what voxels, normals, transferFunc and shadingStyle point to, from the setter
/// on; where a field is written in another way, and for the entries of composableStyle, from the end of the
/// edit on.
///
/// No GL context is needed.
class OSG_TESSALY_DLLMAPPING VolumeNode : public VolumeNodeBase
{
  public:
    typedef VolumeNodeBase Inherited;

    // These take a reference and give the old one back.
    /// Takes a reference, and gives back that on the old one. Null is allowed.
    void setVoxels(const TextureChunkPtr &value);
    void setNormals(const TextureChunkPtr &value);
    void setTransferFunc(const TextureChunkPtr &value);
    void setShadingStyle(const NodeCorePtr &value);

    /// Makes a new handler from the voxels, with starting strategies whatever the fields say. The slice
    /// thickness is attached to the image, as the text "SliceThickness".
    /// \return false, with one message: for an image that is smaller than 2 on an axis, with the handler as
    /// it was, and without voxels that can be used, with no handler
    bool createVolume(void);
    /// Brings the handler into line with the fields that have changed since the last call.
    /// \return whether anything was done; false without a handler
    bool initVolume(void);
    /// Makes the handler's root the only child of the nodes with this core.
    /// \return whether a node took it; false, with one message, without a handler that is complete
    bool attachVolume(void);

    /// Null while there is none.
    VolumeNodeHandler *getVolume(void) const { return _volume; }
    /// Deletes the handler, and takes over another or null. The node's end leaves the handler alone, so an
    /// application that wants it gone calls this first.
    void setVolume(VolumeNodeHandler *volume);

    /// The voxels' box around the origin, one unit per voxel whatever `dimensions` says.
    void adjustVolume(Volume &volume) override;

    /// Below the node nothing is culled.
    Action::ResultE renderEnter(Action *action);
    Action::ResultE renderLeave(Action *action);
    /// Skips what is below if the line misses the node's volume. No voxel is looked at.
    Action::ResultE intersect(Action *action);

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    VolumeNode();
    /// A copy has no handler.
    VolumeNode(const VolumeNode &source);
    ~VolumeNode() override;

    void onCreate(const VolumeNode *source = nullptr);
    void onDestroy() override;

  private:
    friend class FieldContainer;
    friend class VolumeNodeBase;

    static void initMethod();

    bool hasVoxelImage() const;
    void followReferences(BitVector whichField, UInt32 origin);

    // The steps of initVolume: each brings one strategy into line.
    void initRayGeneration();
    void initTransferfunction();
    void initNormalVolume();
    void initShading();
    void initGeometry();
    void initTraversal();
    /// The styles that are applied to what is there.
    bool initComposableStyles(bool all, bool shadingInstalled);

    VolumeNodeHandler *_volume = nullptr; ///< of this aspect; owned
    BitVector _changes = 0;               ///< not handled by initVolume yet
    bool _frustumCulling = true;          ///< of the action, between renderEnter and renderLeave
    bool _voxelsSynced = false;           ///< the voxels came from another aspect

    KeptPointer<TextureChunkPtr> _keptVoxels;
    KeptPointer<TextureChunkPtr> _keptNormals;
    KeptPointer<TextureChunkPtr> _keptTransferFunc;
    KeptPointer<NodeCorePtr> _keptShadingStyle;
    HeldReferences<NodeCorePtr> _heldComposableStyle;
};

OSG_END_NAMESPACE

#endif
