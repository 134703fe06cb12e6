#include <Tessaly/Tessaly.h>

#include <Tessaly/OSGBasicVolumeShadingStyleFields.h>
#include <Tessaly/OSGCommonSurfaceShaderMaterialFields.h>
#include <Tessaly/OSGComposableVolumeShadingStyleFields.h>
#include <Tessaly/OSGDropletFlowViewportFields.h>
#include <Tessaly/OSGFBOForegroundFields.h>
#include <Tessaly/OSGForegroundGroupFields.h>
#include <Tessaly/OSGImprovedColorDisplayFilterFields.h>
#include <Tessaly/OSGLayerFields.h>
#include <Tessaly/OSGMultiCoreFields.h>
#include <Tessaly/OSGNurbsCurveFields.h>
#include <Tessaly/OSGNurbsSurfaceFields.h>
#include <Tessaly/OSGNurbsTrimmingLoopFields.h>
#include <Tessaly/OSGOculusRiftFilterFields.h>
#include <Tessaly/OSGOculusRiftFilter2Fields.h>
#include <Tessaly/OSGPBOGrabForegroundFields.h>
#include <Tessaly/OSGPermutationSHLChunkFields.h>
#include <Tessaly/OSGPrimitiveDrawerFields.h>
#include <Tessaly/OSGScreenDumpForegroundFields.h>
#include <Tessaly/OSGSkydomeBackgroundFields.h>
#include <Tessaly/OSGSortedPrimitivesFields.h>
#include <Tessaly/OSGVolumeNodeFields.h>
#include <Tessaly/OSGVolumeShadingStyleFields.h>
#include <Tessaly/OSGVolumeViewportFields.h>

OSG_BEGIN_NAMESPACE

void initTessalyExtention(void)
{
    // One null pointer of each class that there is. Naming them is all that is meant to happen here.
    [[maybe_unused]] const BasicVolumeShadingStylePtr basicVolumeShadingStyle;
    [[maybe_unused]] const CommonSurfaceShaderMaterialPtr commonSurfaceShaderMaterial;
    [[maybe_unused]] const ComposableVolumeShadingStylePtr composableVolumeShadingStyle;
    [[maybe_unused]] const DropletFlowViewportPtr dropletFlowViewport;
    [[maybe_unused]] const FBOForegroundPtr fboForeground;
    [[maybe_unused]] const ForegroundGroupPtr foregroundGroup;
    [[maybe_unused]] const ImprovedColorDisplayFilterPtr improvedColorDisplayFilter;
    [[maybe_unused]] const LayerPtr layer;
    [[maybe_unused]] const MultiCorePtr multiCore;
    [[maybe_unused]] const NurbsCurvePtr nurbsCurve;
    [[maybe_unused]] const NurbsSurfacePtr nurbsSurface;
    [[maybe_unused]] const NurbsTrimmingLoopPtr nurbsTrimmingLoop;
    [[maybe_unused]] const OculusRiftFilterPtr oculusRiftFilter;
    [[maybe_unused]] const OculusRiftFilter2Ptr oculusRiftFilter2;
    [[maybe_unused]] const PBOGrabForegroundPtr pboGrabForeground;
    [[maybe_unused]] const PermutationSHLChunkPtr permutationSHLChunk;
    [[maybe_unused]] const PrimitiveDrawerPtr primitiveDrawer;
    [[maybe_unused]] const ScreenDumpForegroundPtr screenDumpForeground;
    [[maybe_unused]] const SkydomeBackgroundPtr skydomeBackground;
    [[maybe_unused]] const SortedPrimitivesPtr sortedPrimitives;
    [[maybe_unused]] const VolumeNodePtr volumeNode;
    [[maybe_unused]] const VolumeShadingStylePtr volumeShadingStyle;
    [[maybe_unused]] const VolumeViewportPtr volumeViewport;
}

OSG_END_NAMESPACE
