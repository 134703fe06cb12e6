/// \file
/// The widgets of the panel.

#include "Panel.h"

#include <imgui.h>
#include <imgui_stdlib.h>

#include <algorithm>
#include <array>

namespace viewer
{

namespace
{

/// A list of words for the values of an enumeration, in their order.
template <typename Value, std::size_t count>
bool choice(const char *label, Value &value, const std::array<const char *, count> &words)
{
    int index = static_cast<int>(value);
    if (!ImGui::Combo(label, &index, words.data(), static_cast<int>(count)))
    {
        return false;
    }
    value = static_cast<Value>(index);
    return true;
}

bool slider(const char *label, double &value, float low, float high, const char *format,
            bool logarithmic = false)
{
    float shown = static_cast<float>(value);
    if (!ImGui::SliderFloat(label, &shown, low, high, format,
                            ImGuiSliderFlags_AlwaysClamp | (logarithmic ? ImGuiSliderFlags_Logarithmic : 0)))
    {
        return false;
    }
    value = static_cast<double>(shown);
    return true;
}

bool color(const char *label, Vec3 &value)
{
    float shown[3] = {static_cast<float>(value[0]), static_cast<float>(value[1]),
                      static_cast<float>(value[2])};
    if (!ImGui::ColorEdit3(label, shown, ImGuiColorEditFlags_Float))
    {
        return false;
    }
    for (std::size_t i = 0; i < 3; ++i)
    {
        value[i] = std::clamp(static_cast<double>(shown[i]), 0.0, 1.0);
    }
    return true;
}

void buildTimes(const PanelFacts &facts, double step)
{
    const FrameTimes &times = facts.times;
    const Detail &detail = facts.detail;
    if (detail.full())
    {
        ImGui::Text("shown: step %.4g, refined", step);
    }
    else
    {
        ImGui::Text("shown: step %.4g (%.3g x), 1 of %d x %d pixels", detail.step * step, detail.step,
                    detail.shrink, detail.shrink);
    }
    ImGui::Text("frame %.1f ms: rays %.1f, passes %.1f,", 1e3 * times.total, 1e3 * times.rays,
                1e3 * times.passes);
    ImGui::Text("  changes %.1f, panel %.1f", 1e3 * times.prepare, 1e3 * times.over);
}

} // namespace

void Panel::buildFunction(Options &options, TransferPoints &points, const Session &session,
                          PanelRequest &request)
{
    request.points = _editor.build(points, session.realScale());
    if (ImGui::BeginCombo("preset", options.preset.empty() ? "none" : options.preset.c_str()))
    {
        for (const Preset &preset : presets())
        {
            if (ImGui::Selectable(preset.name, options.preset == preset.name))
            {
                options.preset = preset.name;
                options.shading = preset.shading;
                options.points.reset();
                options.transferFunction.clear();
                request.options = true;
            }
            if (ImGui::IsItemHovered())
            {
                ImGui::SetTooltip("%s", preset.description);
            }
        }
        ImGui::EndCombo();
    }
    if (ImGui::Button("From histogram"))
    {
        request.automatic = true;
    }
    ImGui::InputText("##function", &_functionFile);
    ImGui::SameLine();
    if (ImGui::Button("Load##function"))
    {
        request.loadFunction = _functionFile;
    }
    ImGui::SameLine();
    if (ImGui::Button("Save##function"))
    {
        request.saveFunction = _functionFile;
    }
}

bool Panel::buildShading(Options &options)
{
    bool changed = choice<Shading, 4>("shading", options.shading, {"dvr", "lit", "mip", "xray"});
    const bool classified = options.shading == Shading::Dvr || options.shading == Shading::Lit;
    if (!classified)
    {
        // They work with classified samples only.
        changed = changed || options.gradientModulation.enabled || options.preIntegrated;
        options.gradientModulation.enabled = false;
        options.preIntegrated = false;
    }
    if (options.shading == Shading::Lit)
    {
        changed = color("emissive", options.material.emissive) || changed;
        changed = color("diffuse", options.material.diffuse) || changed;
        changed = color("specular", options.material.specular) || changed;
        changed = slider("shininess", options.material.shininess, 0.0f, 1.0f, "%.3f") || changed;
    }
    if (classified)
    {
        GradientModulation &modulation = options.gradientModulation;
        changed = ImGui::Checkbox("gradient modulation", &modulation.enabled) || changed;
        if (modulation.enabled)
        {
            changed = slider("retained", modulation.retained, 0.0f, 2.0f, "%.3f") || changed;
            changed = slider("boundary", modulation.boundary, 0.0f, 10.0f, "%.3f") || changed;
            changed = slider("exponent", modulation.factor, 0.0f, 4.0f, "%.3f") || changed;
        }
    }
    return changed;
}

bool Panel::buildRays(Options &options)
{
    bool changed = slider("step", options.step, 0.001f, 0.05f, "%.4f", true);
    changed = choice<Ray, 2>("ray", options.ray, {"simple", "interleaved"}) || changed;
    changed = choice<BoundingGeometry, 2>("geometry", options.geometry, {"box", "boundary"}) || changed;
    changed = choice<Traversal, 2>("traversal", options.traversal, {"simple", "block"}) || changed;
    changed = choice<Normals, 3>("normals", options.normals, {"precomputed", "central", "sobel"}) || changed;
    if (options.shading == Shading::Dvr || options.shading == Shading::Lit)
    {
        changed = ImGui::Checkbox("pre-integrated", &options.preIntegrated) || changed;
    }
    return changed;
}

bool Panel::buildScene(Options &options)
{
    bool changed = color("background", options.background);
    changed = ImGui::Checkbox("opaque object", &options.opaque.enabled) || changed;
    if (options.opaque.enabled)
    {
        ImGui::InputText("##mesh", &_meshFile);
        ImGui::SameLine();
        if (ImGui::Button("Mesh"))
        {
            options.opaque.file = _meshFile;
            changed = true;
        }
        ImGui::SameLine();
        if (ImGui::Button("Box"))
        {
            options.opaque.file.clear();
            changed = true;
        }
        if (options.opaque.file.empty())
        {
            changed = color("its colour", options.opaque.color) || changed;
        }
    }
    return changed;
}

void Panel::buildFiles(PanelRequest &request)
{
    if (ImGui::Button("Screenshot"))
    {
        request.screenshot = true;
    }
    ImGui::InputText("##state", &_stateFile);
    ImGui::SameLine();
    if (ImGui::Button("Load##state"))
    {
        request.loadState = _stateFile;
    }
    ImGui::SameLine();
    if (ImGui::Button("Save##state"))
    {
        request.saveState = _stateFile;
    }
}

PanelRequest Panel::build(Options &options, TransferPoints &points, const Session &session,
                          const PanelFacts &facts)
{
    PanelRequest request;
    ImGui::SetNextWindowPos(ImVec2(10, 10), ImGuiCond_FirstUseEver);
    ImGui::SetNextWindowSize(ImVec2(360, 0), ImGuiCond_FirstUseEver);
    ImGui::SetNextWindowSizeConstraints(ImVec2(240, 0), ImVec2(2000, ImGui::GetIO().DisplaySize.y - 20));
    ImGui::Begin("Tessaly");
    ImGui::PushItemWidth(-130.0f);
    const VolumeFacts &volume = session.facts();
    ImGui::TextWrapped("%s", facts.file.c_str());
    ImGui::Text("%d x %d x %d voxels, %d bits", volume.voxels[0], volume.voxels[1], volume.voxels[2],
                volume.bits);
    if (ImGui::CollapsingHeader("Transfer function", ImGuiTreeNodeFlags_DefaultOpen))
    {
        buildFunction(options, points, session, request);
    }
    if (ImGui::CollapsingHeader("Shading", ImGuiTreeNodeFlags_DefaultOpen))
    {
        request.options = buildShading(options) || request.options;
    }
    if (ImGui::CollapsingHeader("Rays"))
    {
        request.options = buildRays(options) || request.options;
    }
    if (ImGui::CollapsingHeader("Scene"))
    {
        request.options = buildScene(options) || request.options;
    }
    if (ImGui::CollapsingHeader("View and files"))
    {
        request.reset = ImGui::Button("Reset");
        constexpr std::array<const char *, 3> axes{"X", "Y", "Z"};
        for (int axis = 0; axis < 3; ++axis)
        {
            ImGui::SameLine();
            if (ImGui::Button(axes[static_cast<std::size_t>(axis)]))
            {
                request.axis = axis;
            }
        }
        buildFiles(request);
    }
    ImGui::Separator();
    buildTimes(facts, options.step);
    if (!facts.message.empty())
    {
        ImGui::PushStyleColor(ImGuiCol_Text, facts.failed ? ImVec4(1.0f, 0.45f, 0.4f, 1.0f)
                                                          : ImVec4(0.7f, 0.9f, 0.7f, 1.0f));
        ImGui::TextWrapped("%s", facts.message.c_str());
        ImGui::PopStyleColor();
    }
    ImGui::TextDisabled("H: help");
    ImGui::PopItemWidth();
    ImGui::End();
    return request;
}

void Panel::buildHelp()
{
    const ImVec2 display = ImGui::GetIO().DisplaySize;
    ImGui::SetNextWindowPos(ImVec2(display.x / 2, display.y / 2), ImGuiCond_Always, ImVec2(0.5f, 0.5f));
    ImGui::Begin("Help", nullptr,
                 ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoCollapse);
    ImGui::TextUnformatted(
        "left drag             turn\n"
        "middle or Shift drag  move sideways\n"
        "wheel or right drag   nearer, farther\n"
        "R                     the first view again\n"
        "X Y Z                 along an axis; with Shift from its other side\n"
        "O                     the opaque object on or off\n"
        "P                     screenshot, tessaly.png or the next free number\n"
        "Tab                   the panel on or off\n"
        "H                     this help\n"
        "Q or Escape           end\n"
        "\n"
        "In the curve a click adds a point, a drag moves it, a right click takes it away;\n"
        "so in the colours below it.\n"
        "Drop a scan, a mesh, a transfer function (.txt) or a state (.ini) on the window.");
    ImGui::End();
}

void Panel::buildInvitation(const PanelFacts &facts)
{
    const ImVec2 display = ImGui::GetIO().DisplaySize;
    ImGui::SetNextWindowPos(ImVec2(display.x / 2, display.y / 2), ImGuiCond_Always, ImVec2(0.5f, 0.5f));
    ImGui::Begin("Tessaly", nullptr,
                 ImGuiWindowFlags_AlwaysAutoResize | ImGuiWindowFlags_NoMove | ImGuiWindowFlags_NoCollapse);
    ImGui::TextUnformatted("Drop a scan here.");
    if (!facts.message.empty())
    {
        ImGui::TextUnformatted(facts.message.c_str());
    }
    ImGui::End();
}

} // namespace viewer
