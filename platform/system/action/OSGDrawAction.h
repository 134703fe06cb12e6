#ifndef _OSGDRAWACTION_H_
#define _OSGDRAWACTION_H_

/// \file
/// The action that draws a scene as it walks it, without sorting.

#include "OSGDrawActionBase.h"

OSG_BEGIN_NAMESPACE

/// Draws the graph as it is walked, without sorting.
class OSG_SYSTEMLIB_DLLMAPPING DrawAction : public DrawActionBase
{
    OSG_ACTION_FUNCTORS

  public:
    /// A new action with the settings of the prototype; the caller owns it.
    static DrawAction *create();
    static void setPrototype(DrawAction *prototype);
    static DrawAction *getPrototype();

    DrawAction();
    /// A copy has the same settings and no traversal.
    DrawAction(const DrawAction &source);
    ~DrawAction() override;

    /// The matrix of the node being visited, to the world's coordinates.
    void push_matrix(const Matrix &matrix);
    /// Leaves what push_matrix entered.
    void pop_matrix();
    /// The matrix of the node being visited, to the world's coordinates.
    const Matrix &top_matrix() const { return _matrices.back(); }

    bool isVisible(Node *node) override;
    void dropLight(Light *light) override;
    void undropLight(Light *light) override;

  protected:
    /// As Action has it.
    ResultE start() override;
    ResultE stop(ResultE result) override;

  private:
    std::vector<Matrix> _matrices;
    UInt32 _lightCount = 0;
};

OSG_END_NAMESPACE

#endif
