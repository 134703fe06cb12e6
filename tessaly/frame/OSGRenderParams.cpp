#include <Tessaly/OSGRenderParams.h>

#include <atomic>

OSG_BEGIN_NAMESPACE

namespace
{

std::atomic<UInt32> renderParams{0};

} // namespace

UInt32 getRenderParams()
{
    return renderParams.load(std::memory_order_relaxed);
}

void setRenderParams(UInt32 params)
{
    renderParams.store(params, std::memory_order_relaxed);
}

OSG_END_NAMESPACE
