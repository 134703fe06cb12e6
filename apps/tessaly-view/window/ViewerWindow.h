#ifndef TESSALY_VIEW_VIEWERWINDOW_H
#define TESSALY_VIEW_VIEWERWINDOW_H

/// \file
/// The program's window.

#include "Options.h"

#include <string>

namespace viewer
{

/// Opens a window on what the options name, and stays until a person closes it; then writes the state, where
/// options.saveState says so. On the main thread, between osgInit and osgExit. False, with one line in
/// `error`, where no window can be opened, what the options name can't be shown, or the state can't be
/// written.
bool runWindow(const Options &options, std::string &error);

} // namespace viewer

#endif
