#ifndef TESSALY_VIEW_PANEL_H
#define TESSALY_VIEW_PANEL_H

/// \file
/// The panel over the picture.

#include "Options.h"
#include "Session.h"
#include "TransferEditor.h"

#include <string>

namespace viewer
{

/// What the panel tells beside the options.
struct PanelFacts
{
    std::string file;    ///< what is shown, "" for nothing
    Detail detail;       ///< of the picture that is shown
    FrameTimes times;    ///< of that frame
    std::string message; ///< what happened last
    bool failed = false; ///< whether that was a failure
};

/// What a person asked for; a name is "" where it was not asked for.
struct PanelRequest
{
    bool options = false;   ///< the options were changed
    bool points = false;    ///< the points were changed
    bool automatic = false; ///< the function from the histogram is wanted
    bool reset = false;     ///< the first view is wanted
    int axis = -1;          ///< a view along an axis is wanted
    bool screenshot = false;
    std::string loadFunction;
    std::string saveFunction;
    std::string loadState;
    std::string saveState;
};

/// The widgets. Between Dear ImGui's NewFrame and Render.
class Panel
{
public:
    /// To be called when another volume is shown.
    void show(const Session &session) { _editor.show(session.histogram()); }
    /// \param options and \param points are what is shown, and are changed \param session has a volume loaded
    PanelRequest build(Options &options, TransferPoints &points, const Session &session,
                       const PanelFacts &facts);
    /// The keys and what the mouse does.
    void buildHelp();
    /// What is shown while there is no volume.
    void buildInvitation(const PanelFacts &facts);

private:
    void buildFunction(Options &options, TransferPoints &points, const Session &session,
                       PanelRequest &request);
    bool buildShading(Options &options);
    bool buildRays(Options &options);
    bool buildScene(Options &options);
    void buildFiles(PanelRequest &request);

    TransferEditor _editor;
    std::string _functionFile = "transfer-function.txt";
    std::string _stateFile = "state.ini";
    std::string _meshFile;
};

} // namespace viewer

#endif
