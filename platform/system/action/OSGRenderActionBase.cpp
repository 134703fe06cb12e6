#include "OSGRenderActionBase.h"

OSG_BEGIN_NAMESPACE

RenderActionBase::RenderActionBase() = default;

RenderActionBase::RenderActionBase(const RenderActionBase &source) : DrawActionBase(source) {}

RenderActionBase::~RenderActionBase() = default;

OSG_END_NAMESPACE
