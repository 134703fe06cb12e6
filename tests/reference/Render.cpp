// The whole frame, pixel by pixel, and the comparison with a shown one.
#include "reference/RayCaster.h"
#include "reference/SetUp.h"

#include <algorithm>
#include <cmath>

namespace reference
{

namespace
{

float mixed(float scene, float ray, float alpha)
{
    return std::clamp(scene * (1.0f - alpha) + ray * alpha, 0.0f, 1.0f);
}

Color over(const Color &scene, const Vec4f &ray)
{
    return {mixed(scene.r, ray.x, ray.w), mixed(scene.g, ray.y, ray.w), mixed(scene.b, ray.z, ray.w)};
}

float difference(const Color &a, const Color &b)
{
    return std::max({std::abs(a.r - b.r), std::abs(a.g - b.g), std::abs(a.b - b.b)});
}

// Everything at a pixel's corner that a silhouette would change.
struct Corner
{
    Crossing crossing;
    Opaque opaque;
};

bool edgeBetween(const Crossing &centre, const Crossing &corner, double jump)
{
    if(centre.covered != corner.covered || centre.hasExit != corner.hasExit)
        return true;
    return std::abs(centre.entry - corner.entry) > jump || std::abs(centre.exit - corner.exit) > jump;
}

// Adds a colour unless one like it is known.
void addAlternative(Alternatives &alternatives, const Color &main, const Color &color)
{
    if(difference(main, color) < 1e-4f)
        return;
    for(int n = 0; n < alternatives.count; ++n)
        if(difference(alternatives.colors[n], color) < 1e-4f)
            return;
    alternatives.colors[alternatives.count++] = color;
}

}

Picture render(const Scene &scene)
{
    Picture picture;
    const Volume &raw = scene.volume;
    const bool known = raw.bits == 8 || raw.bits == 16;
    if(!known || raw.voxels.empty() || scene.width < 1 || scene.height < 1)
        return picture;
    picture.width = scene.width;
    picture.height = scene.height;

    // What is made once per volume and transfer function.
    bool grew = false;
    const Volume volume = padded(normalised(raw, scene.swapped), grew);
    const bool edge = grew && volume.bits == 8;
    const std::vector<Entry> table = transferTable(scene.transfer, volume.bits);
    const BlockGrid blocks = blockVerdicts(volume, opacitySum(table));
    BlockGrid shape = blocks;
    if(scene.geometry == GeometryType::Box)
    {
        shape.sides = {1, 1, 1};
        shape.verdicts = {255};
    }
    const Frame frame = frameOf(scene, {volume.width, volume.height, volume.depth});
    const Vec3d toLight = transform(
        frame.eyeToVolume, {scene.light.position[0], scene.light.position[1], scene.light.position[2]}, 0.0);
    const RayCaster caster(scene, volume, edge, table, blocks, toFloat((1.0 / length(toLight)) * toLight));

    // The corners of all pixels, for what lies within half a pixel.
    const double zNear = scene.camera.nearPlane;
    const double zFar = scene.camera.farPlane;
    std::vector<Corner> corners;
    corners.reserve(static_cast<std::size_t>(scene.width + 1) * (scene.height + 1));
    for(int y = 0; y <= scene.height; ++y)
        for(int x = 0; x <= scene.width; ++x)
            corners.push_back(
                {cross(shape, frame.sight(scene, x, y), zNear, zFar), nearestBox(scene, x, y, frame)});

    const double blockEdge = 1.0 / std::max({shape.sides[0], shape.sides[1], shape.sides[2]});
    for(int y = 0; y < scene.height; ++y)
        for(int x = 0; x < scene.width; ++x)
        {
            std::uint8_t reasons = Exact;
            const double windowX = x + 0.5;
            const double windowY = y + 0.5;

            // Scene pass.
            const Opaque opaque = nearestBox(scene, windowX, windowY, frame);
            const Color flat = opaque.box < 0 ? scene.background : scene.boxes[opaque.box].color;
            const Color behind = {throughHalf(flat.r), throughHalf(flat.g), throughHalf(flat.b)};
            const float depth = opaque.box < 0 ? 1.0f : windowDepth(opaque.distance, zNear, zFar);

            // Front and back pass.
            const Sight sight = frame.sight(scene, windowX, windowY);
            const Crossing crossing = cross(shape, sight, zNear, zFar);
            const Vec3f &entry = crossing.entryPoint;
            const Vec4f front = {entry[0], entry[1], entry[2], crossing.covered ? 1.0f : 0.0f};
            const Vec4f back = backValue(scene, frame, crossing, windowX, windowY, depth);

            // Silhouettes.
            const double jump = 0.5 * blockEdge / length(sight.direction);
            for(int corner = 0; corner < 4; ++corner)
            {
                const std::size_t at =
                    static_cast<std::size_t>(y + corner / 2) * (scene.width + 1) + x + corner % 2;
                if(edgeBetween(crossing, corners[at].crossing, jump) || corners[at].opaque.box != opaque.box)
                    reasons |= Edge;
            }
            // Vertices lie on a grid of 1/256 pixel, so a silhouette that close to the centre counts either way, also
            // one between faces that are too near one another for the corners to tell.
            constexpr double snap = 1.0 / 128.0;
            const double gap = 0.02 / length(sight.direction);
            for(int corner = 0; corner < 4; ++corner)
            {
                const double besideX = windowX + (corner % 2 == 0 ? -snap : snap);
                const double besideY = windowY + (corner / 2 == 0 ? -snap : snap);
                if(edgeBetween(crossing, cross(shape, frame.sight(scene, besideX, besideY), zNear, zFar), gap))
                    reasons |= Edge;
            }
            if(crossing.tie)
                reasons |= Edge;

            // The ray, and once more for each decision that rounding may turn.
            const RayResult ray = caster.cast(front, back, x, y, {});
            const Color color = over(behind, ray.color);
            Alternatives alternatives;
            bool undefined = ray.undefined;
            bool imprecise = ray.imprecise;
            bool thresholdDoubtful = ray.thresholdDoubtful;
            for(int turns = 1; turns < 8; ++turns)
            {
                const Turn turn = {(turns & 1) != 0, (turns & 2) != 0, (turns & 4) != 0};
                const bool possible = (!turn.start || ray.startDoubtful) && (!turn.end || ray.endDoubtful) &&
                                      (!turn.threshold || thresholdDoubtful);
                if(!possible)
                    continue;
                const RayResult other = caster.cast(front, back, x, y, turn);
                thresholdDoubtful = thresholdDoubtful || other.thresholdDoubtful;
                undefined = undefined || other.undefined;
                imprecise = imprecise || other.imprecise;
                addAlternative(alternatives, color, over(behind, other.color));
            }
            if(alternatives.count > 0)
                reasons |= Alternative;
            if(undefined)
                reasons |= Undefined;
            if(imprecise)
                reasons |= TexturePrecision;

            picture.pixels.push_back(color);
            picture.reasons.push_back(reasons);
            picture.alternatives.push_back(alternatives);
            picture.front.push_back(front);
            picture.back.push_back(back);
            picture.sceneColor.push_back(behind);
            picture.sceneDepth.push_back(depth);
            picture.samples.push_back(ray.samples);
        }
    return picture;
}

Comparison compare(const Picture &picture, const std::uint8_t *shown, int channels, float tolerance,
                   std::uint8_t leaveOut)
{
    Comparison result;
    double sum = 0.0;
    for(int y = 0; y < picture.height; ++y)
        for(int x = 0; x < picture.width; ++x)
        {
            const std::size_t at = picture.index(x, y);
            const std::uint8_t reasons = picture.reasons[at] & leaveOut;
            if(reasons & Undefined)
                ++result.undefined;
            else if(reasons & Edge)
                ++result.edge;
            else if(reasons & TexturePrecision)
                ++result.precision;
            if(reasons & (Undefined | Edge | TexturePrecision))
                continue; // an alternative is judged all the same
            const std::uint8_t *bytes = shown + at * channels;
            const Color color = {bytes[0] / 255.0f, bytes[1] / 255.0f, bytes[2] / 255.0f};
            float off = difference(color, picture.pixels[at]);
            const Alternatives &others = picture.alternatives[at];
            for(int n = 0; n < others.count; ++n)
                off = std::min(off, difference(color, others.colors[n]));
            ++result.judged;
            sum += off;
            if(off * 255.0f <= tolerance + 1e-3f)
                ++result.agreeing;
            if(off > result.worst)
            {
                result.worst = off;
                result.worstX = x;
                result.worstY = y;
            }
        }
    result.mean = result.judged > 0 ? sum / result.judged : 0.0;
    return result;
}

}
