#ifndef _OSGNODECORE_H_
#define _OSGNODECORE_H_

/// \file
/// What a node is.

#include "OSGMatrix.h"
#include "OSGNodeCoreBase.h"
#include "OSGVolume.h"

OSG_BEGIN_NAMESPACE

class OSG_SYSTEMLIB_DLLMAPPING NodeCore : public NodeCoreBase
{
  public:
    typedef NodeCoreBase Inherited;

    /// Multiplies what the core does to coordinates onto `result` from the right. Most do nothing.
    virtual void accumulateMatrix(Matrix &result);
    /// Adapts the volume of a node with this core, which holds the children's volumes when this is called.
    virtual void adjustVolume(Volume &volume);
    /// Makes the volumes of all nodes with this core be computed anew when they are next asked for.
    void invalidateVolume();

    void changed(BitVector whichField, UInt32 origin) override;
    void dump(UInt32 indent = 0, const BitVector flags = 0) const override;

  protected:
    NodeCore();
    /// A copy has no nodes.
    NodeCore(const NodeCore &source);
    ~NodeCore() override;

    /// For Node, which enters itself and leaves.
    void addParent(const NodePtr &parent);
    void subParent(const NodePtr &parent);

  private:
    friend class FieldContainer;
    friend class NodeCoreBase;
    friend class Node;

    static void initMethod();
};

OSG_END_NAMESPACE

#endif
