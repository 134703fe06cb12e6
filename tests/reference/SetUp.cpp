// The passes that set rays up, pixel by pixel.
#include "reference/SetUp.h"

#include <algorithm>
#include <limits>

namespace reference
{

Frame frameOf(const Scene &scene, const std::array<int, 3> &resolution)
{
    Vec3d extent = scene.dimensions;
    if(extent[0] < 0.0 || extent[1] < 0.0 || extent[2] < 0.0)
        for(int axis = 0; axis < 3; ++axis)
            extent[axis] = resolution[axis] * scene.sliceThickness[axis];
    Frame frame;
    frame.unitToWorld = scene.nodeToWorld * translation(-extent[0] / 2, -extent[1] / 2, -extent[2] / 2) *
                        scaling(extent[0], extent[1], extent[2]);
    frame.eyeToVolume = inverse(frame.unitToWorld) * scene.camera.beaconToWorld;
    frame.halfHeight = std::tan(scene.camera.fov / 2.0);
    frame.halfWidth = frame.halfHeight * scene.width / scene.height;
    return frame;
}

namespace
{

Vec3d eyeDirection(const Scene &scene, const Frame &frame, double x, double y)
{
    return {(2.0 * x / scene.width - 1.0) * frame.halfWidth,
            (2.0 * y / scene.height - 1.0) * frame.halfHeight, -1.0};
}

}

Sight Frame::sight(const Scene &scene, double x, double y) const
{
    return {transform(eyeToVolume, {0.0, 0.0, 0.0}, 1.0),
            transform(eyeToVolume, eyeDirection(scene, *this, x, y), 0.0)};
}

Crossing cross(const BlockGrid &shape, const Sight &sight, double nearPlane, double farPlane)
{
    struct Hit
    {
        double t = 0.0;
        Vec3d point{};
        bool found = false;
    };
    Hit front;
    Hit nearBack;
    Hit farBack;
    for(int axis = 0; axis < 3; ++axis)
    {
        if(sight.direction[axis] == 0.0)
            continue;
        const int u = (axis + 1) % 3;
        const int v = (axis + 2) % 3;
        for(int plane = 0; plane <= shape.sides[axis]; ++plane)
        {
            const double at = static_cast<double>(plane) / shape.sides[axis];
            const double t = (at - sight.eye[axis]) / sight.direction[axis];
            if(t < nearPlane || t > farPlane)
                continue;
            Vec3d point = sight.eye + t * sight.direction;
            point[axis] = at;
            if(point[u] < 0.0 || point[u] > 1.0 || point[v] < 0.0 || point[v] > 1.0)
                continue;
            // There is a face where exactly one of the two blocks beside the plane is occupied; it faces the
            // other one.
            std::array<int, 3> block{};
            block[u] = std::min(shape.sides[u] - 1, static_cast<int>(point[u] * shape.sides[u]));
            block[v] = std::min(shape.sides[v] - 1, static_cast<int>(point[v] * shape.sides[v]));
            block[axis] = plane;
            const bool above = shape.occupied(block[0], block[1], block[2]);
            block[axis] = plane - 1;
            const bool below = shape.occupied(block[0], block[1], block[2]);
            if(above == below)
                continue;
            const double outward = below ? 1.0 : -1.0;
            const bool facesEye = outward * sight.direction[axis] < 0.0;
            const Hit hit{t, point, true};
            if(facesEye && (!front.found || t < front.t))
                front = hit;
            if(!facesEye && (!nearBack.found || t < nearBack.t))
                nearBack = hit;
            if(!facesEye && (!farBack.found || t > farBack.t))
                farBack = hit;
        }
    }

    Crossing result;
    result.covered = front.found || nearBack.found;
    result.hasExit = farBack.found;
    result.fromNear = !front.found || (nearBack.found && nearBack.t < front.t);
    // The depth buffer can't tell the two apart below some units of its last bit.
    const double depthUnit = nearBack.t * nearBack.t / (nearPlane * 16777216.0);
    result.tie =
        front.found && nearBack.found && std::abs(front.t - nearBack.t) < 1e-6 * nearBack.t + 2.0 * depthUnit;
    result.entry = result.fromNear ? nearPlane : front.t;
    result.entryPoint = toFloat(result.fromNear ? sight.eye + nearPlane * sight.direction : front.point);
    result.exit = farBack.t;
    result.exitPoint = toFloat(farBack.point);
    return result;
}

Opaque nearestBox(const Scene &scene, double x, double y, const Frame &frame)
{
    Opaque nearest;
    const Vec3d direction = eyeDirection(scene, frame, x, y);
    for(std::size_t n = 0; n < scene.boxes.size(); ++n)
    {
        const OpaqueBox &box = scene.boxes[n];
        const Mat4 eyeToBox = inverse(box.toWorld) * scene.camera.beaconToWorld;
        const Vec3d from = transform(eyeToBox, {0.0, 0.0, 0.0}, 1.0);
        const Vec3d along = transform(eyeToBox, direction, 0.0);
        double enter = -std::numeric_limits<double>::infinity();
        double leave = std::numeric_limits<double>::infinity();
        for(int axis = 0; axis < 3; ++axis)
        {
            if(along[axis] == 0.0)
            {
                if(from[axis] < box.low[axis] || from[axis] > box.high[axis])
                    leave = -std::numeric_limits<double>::infinity();
                continue;
            }
            const double a = (box.low[axis] - from[axis]) / along[axis];
            const double b = (box.high[axis] - from[axis]) / along[axis];
            enter = std::max(enter, std::min(a, b));
            leave = std::min(leave, std::max(a, b));
        }
        if(enter > leave)
            continue;
        // The first of the two faces that the near plane leaves standing.
        const double distance = enter >= scene.camera.nearPlane ? enter : leave;
        if(distance < scene.camera.nearPlane || distance > scene.camera.farPlane)
            continue;
        if(nearest.box < 0 || distance < nearest.distance)
            nearest = {static_cast<int>(n), distance};
    }
    return nearest;
}

float windowDepth(double distance, double nearPlane, double farPlane)
{
    const double depth = farPlane / (farPlane - nearPlane) * (1.0 - nearPlane / distance);
    constexpr double top = 16777215.0;
    return static_cast<float>(std::nearbyint(std::clamp(depth, 0.0, 1.0) * top) / top);
}

Vec4f backValue(const Scene &scene, const Frame &frame, const Crossing &crossing, double x, double y,
                float depth)
{
    if(!crossing.hasExit)
        return {};
    // The scene's point, from its depth back to the unit cube; the depth arithmetic is the shader's, in
    // floats.
    const float zNear = static_cast<float>(scene.camera.nearPlane);
    const float zFar = static_cast<float>(scene.camera.farPlane);
    const float ndcZ = 2.0f * depth - 1.0f;
    const float a = zNear + zFar;
    const float b = zNear - zFar;
    const float c = 2.0f * zNear * zFar;
    const float distance = c / (a + ndcZ * b);
    const Vec3d eyePoint = static_cast<double>(distance) * eyeDirection(scene, frame, x, y);
    const Vec3f scenePoint = toFloat(transform(frame.eyeToVolume, eyePoint, 1.0));

    const Vec3f toBack = crossing.exitPoint - crossing.entryPoint;
    const Vec3f toScene = scenePoint - crossing.entryPoint;
    const float lengthBack = length(toBack);
    const float along = dot(toBack, toScene);
    const float sign = along > 0.0f ? 1.0f : along < 0.0f ? -1.0f : 0.0f;
    const float lengthScene = sign * length(toScene);
    const float covered = crossing.covered ? 1.0f : 0.0f;
    const float usable = std::max(0.0f, std::min(lengthScene, lengthBack) * covered);
    const Vec3f direction = (1.0f / lengthBack) * toBack;
    return {direction[0], direction[1], direction[2], usable};
}

}
