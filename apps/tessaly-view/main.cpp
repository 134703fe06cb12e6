/// \file
/// tessaly-view: a scan in, a picture out, or a window on it.

#include "ConsoleLog.h"
#include "FileChecks.h"
#include "Options.h"
#include "ProgressBar.h"
#include "Session.h"
#include "StdoutGuard.h"
#include "TransferFunctionFile.h"
#ifdef TESSALY_VIEWER_WINDOW
#include "window/ViewerWindow.h"
#endif

#include <OpenSG/OSGConfig.h>
#include <Tessaly/Tessaly.h>

#include <algorithm>
#include <cstdio>
#include <functional>
#include <iostream>
#include <utility>
#include <vector>
#include <unistd.h>

namespace
{

using namespace viewer;

int fail(const std::string &what, ExitStatus status = ExitFailure)
{
    std::cerr << "tessaly-view: " << what << std::endl;
    return status;
}

/// What is wrong with the files that the options name, in one line, or "".
std::string checkFiles(const Options &options)
{
    std::string wrong = options.input.empty() ? "" : checkInput(options.input);
    if (wrong.empty() && !options.info && !options.output.empty())
    {
        wrong = checkOutput(options.output);
    }
    for (const std::string &written : {options.saveFunction, options.saveState})
    {
        if (wrong.empty() && !written.empty())
        {
            wrong = checkFolderOf(written);
        }
    }
    return wrong;
}

void printInfo(const Options &options, Scan &scan)
{
    if (options.swapped)
    {
        scan.swapBytes();
    }
    const VolumeFacts &facts = scan.facts();
    const Histogram histogram = scan.histogram();
    std::printf("file        %s\n", options.input.c_str());
    std::printf("voxels      %d x %d x %d\n", facts.voxels[0], facts.voxels[1], facts.voxels[2]);
    std::printf("type        %d bits\n", facts.bits);
    std::printf("spacing     %g x %g x %g\n", facts.spacing[0], facts.spacing[1], facts.spacing[2]);
    std::printf("extent      %g x %g x %g\n", facts.extent[0], facts.extent[1], facts.extent[2]);
    std::printf("memory      %.1f MiB\n", static_cast<double>(facts.bytes) / (1024.0 * 1024.0));
    std::printf("values      %zu to %zu\n", histogram.lowest(), histogram.highest());
    const bool themselves =
        facts.real && facts.real->offset == 0.0 && facts.real->factor == 1.0 && facts.unit.empty();
    if (facts.real && !themselves)
    {
        const auto real = [&](std::size_t value)
        { return facts.real->offset + facts.real->factor * static_cast<double>(value); };
        std::printf("stand for   %g to %g%s%s\n", real(histogram.lowest()), real(histogram.highest()),
                    facts.unit.empty() ? "" : " ", facts.unit.c_str());
    }
    std::printf("background  up to %zu\n", backgroundThreshold(histogram));
    std::fflush(stdout);
}

/// "brain.png", 7 of 24 -> "brain-007.png"
std::string numberedName(const std::string &output, int index, int count)
{
    const int digits = std::max(3, static_cast<int>(std::to_string(count - 1).size()));
    std::string number = std::to_string(index);
    number.insert(0, static_cast<std::size_t>(std::max(0, digits - static_cast<int>(number.size()))), '0');
    const std::size_t dot = output.rfind('.');
    return output.substr(0, dot) + "-" + number + output.substr(dot);
}

/// The work in steps. One that fails is told in one line: the log's, where it has one, says more.
class Steps
{
public:
    explicit Steps(const Options &options)
        : _options(options),
          _bar(std::cerr, isatty(STDERR_FILENO) != 0 && !options.quiet && !options.verbose),
          _log(std::cerr,
               options.verbose ? Chatter::Verbose
               : options.quiet ? Chatter::Quiet
                               : Chatter::Normal,
               [this] { _bar.clear(); })
    {
    }

    bool operator()(const std::function<bool(std::string &error)> &work)
    {
        std::string error;
        _log.hold();
        if (work(error))
        {
            _log.release();
            return true;
        }
        const std::string said = _log.drop();
        _bar.clear();
        fail(said.empty() ? error : said);
        return false;
    }

    void notice(const std::string &line)
    {
        if (!_options.quiet)
        {
            _bar.clear();
            std::cerr << "tessaly-view: " << line << std::endl;
        }
    }

    ProgressBar &bar() { return _bar; }

private:
    const Options &_options;
    ProgressBar _bar;
    ConsoleLog _log;
};

/// One picture, or those of a turntable.
bool writePictures(const Options &options, Session &session, Steps &step, std::vector<std::string> &written)
{
    const int count = std::max(options.turntable, 1);
    for (int i = 0; i < count; ++i)
    {
        step.bar().show(0.5 + 0.5 * i / count, "drawing");
        std::string name = options.output;
        if (options.turntable > 0)
        {
            name = numberedName(options.output, i, count);
            CameraRequest camera = options.camera;
            camera.azimuth += 360.0 * i / count;
            session.setCamera(camera);
        }
        if (!step([&](std::string &error) { return session.write(name, error); }))
        {
            return false;
        }
        written.push_back(name);
    }
    return true;
}

/// Reads, draws and writes, between the library's beginning and its end.
int drawPictures(const Options &options)
{
    Steps step(options);
    Scan scan;
    step.bar().show(0.0, "reading");
    if (!step([&](std::string &error) { return scan.read(options.input, error); }))
    {
        return ExitFailure;
    }
    if (options.info)
    {
        step.bar().clear();
        printInfo(options, scan);
        return ExitSuccess;
    }

    std::vector<std::string> written;
    {
        const StdoutGuard guard(options.verbose ? StdoutGuard::To::StandardError : StdoutGuard::To::Nowhere);
        Session session;
        step.bar().show(0.3, "setting up");
        const auto notice = [&](const std::string &line) { step.notice(line); };
        if (!step([&](std::string &error) { return session.open(options.width, options.height, error); }) ||
            !step([&](std::string &error)
                  { return session.load(std::move(scan), options, notice, error); }) ||
            !writePictures(options, session, step, written) ||
            !step([&](std::string &error) { return session.save(options, error); }))
        {
            return ExitFailure;
        }
    }
    step.bar().clear();
    for (const std::string &name : written)
    {
        if (!options.quiet)
        {
            std::cout << name << ": " << options.width << " x " << options.height << " pixels" << std::endl;
        }
    }
    return ExitSuccess;
}

/// What there is to do, or a line on what this build lacks.
int view(const Options &options)
{
    if (options.info || !options.output.empty())
    {
        return drawPictures(options);
    }
#ifdef TESSALY_VIEWER_WINDOW
    const StdoutGuard guard(options.verbose ? StdoutGuard::To::StandardError : StdoutGuard::To::Nowhere);
    // What the log says meanwhile is shown as it comes.
    const ConsoleLog log(std::cerr,
                         options.verbose ? Chatter::Verbose
                         : options.quiet ? Chatter::Quiet
                                         : Chatter::Normal,
                         [] {});
    std::string error;
    return runWindow(options, error) ? ExitSuccess : fail(error);
#else
    return fail(
        "this build has no window, it was configured without GLFW and Dear ImGui; --output is required",
        ExitUsage);
#endif
}

} // namespace

int main(int argc, char **argv)
{
    const CommandLine line = parseCommandLine(argc, argv);
    if (!line.run)
    {
        if (line.exitStatus != ExitSuccess)
        {
            std::cerr << "tessaly-view: " << line.text << std::endl;
            return line.exitStatus;
        }
        std::cout << line.text;
        return ExitSuccess;
    }

    const Options &options = line.options;
    const std::string wrong = checkFiles(options);
    if (!wrong.empty())
    {
        return fail(wrong);
    }
    // A wrong file is told ahead of the work.
    if (!options.transferFunction.empty() && !options.points)
    {
        const TransferFunctionText function = readTransferFunction(options.transferFunction);
        if (!function.error.empty())
        {
            return fail(function.error);
        }
        if (!function.warning.empty() && !options.quiet)
        {
            std::cerr << "tessaly-view: warning: " << function.warning << std::endl;
        }
    }

    if (!osg::osgInit(argc, argv))
    {
        return fail("the scene graph could not be set up");
    }
    osg::initTessalyExtention();
    const int status = view(options);
    osg::osgExit();
    return status;
}
