/// \file
/// tessaly-view: a scan in, a picture out.

#include "ConsoleLog.h"
#include "FileChecks.h"
#include "Options.h"
#include "ProgressBar.h"
#include "StdoutGuard.h"
#include "TransferFunctionFile.h"
#include "ViewerScene.h"

#include <OpenSG/OSGConfig.h>
#include <Tessaly/Tessaly.h>

#include <cstdio>
#include <iostream>
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
    std::string wrong = checkInput(options.input);
    if (wrong.empty() && !options.info)
    {
        wrong = checkOutput(options.output);
    }
    return wrong;
}

void printInfo(const Options &options, const ViewerScene &scene)
{
    const VolumeFacts &facts = scene.facts();
    const Histogram histogram = options.swapped ? byteSwapped(scene.histogram()) : scene.histogram();
    std::printf("file        %s\n", options.input.c_str());
    std::printf("voxels      %d x %d x %d\n", facts.voxels[0], facts.voxels[1], facts.voxels[2]);
    std::printf("type        %d bits\n", facts.bits);
    std::printf("spacing     %g x %g x %g\n", facts.spacing[0], facts.spacing[1], facts.spacing[2]);
    std::printf("extent      %g x %g x %g\n", facts.extent[0], facts.extent[1], facts.extent[2]);
    std::printf("memory      %.1f MiB\n", static_cast<double>(facts.bytes) / (1024.0 * 1024.0));
    std::printf("values      %zu to %zu\n", histogram.lowest(), histogram.highest());
    std::printf("background  up to %zu\n", backgroundThreshold(histogram));
    std::fflush(stdout);
}

/// Reads, draws and writes, between the library's beginning and its end.
int view(const Options &options, const TransferPoints *points)
{
    const bool terminal = isatty(STDERR_FILENO) != 0;
    ProgressBar bar(std::cerr, terminal && !options.quiet && !options.verbose);
    ConsoleLog log(std::cerr,
                   options.verbose ? Chatter::Verbose
                   : options.quiet ? Chatter::Quiet
                                   : Chatter::Normal,
                   [&bar] { bar.clear(); });
    ViewerScene scene;
    std::string error;

    // A step that fails is told in one line: the log's, where it has one, says more.
    const auto step = [&](auto &&work)
    {
        log.hold();
        if (work())
        {
            log.release();
            return true;
        }
        const std::string said = log.drop();
        bar.clear();
        fail(said.empty() ? error : said);
        return false;
    };

    bar.show(0.0, "reading");
    if (!step([&] { return scene.read(options.input, error); }))
    {
        return ExitFailure;
    }
    if (options.info)
    {
        bar.clear();
        printInfo(options, scene);
        return ExitSuccess;
    }

    {
        const StdoutGuard guard(options.verbose ? StdoutGuard::To::StandardError : StdoutGuard::To::Nowhere);
        bar.show(0.3, "setting up");
        if (!step([&] { return scene.build(options, points, error); }) ||
            !step([&] { return scene.open(error); }))
        {
            return ExitFailure;
        }
        for (int frame = 0; frame < ViewerScene::framesToPicture; ++frame)
        {
            bar.show(0.5 + 0.4 * frame / ViewerScene::framesToPicture, "drawing");
            scene.draw();
        }
        bar.show(0.9, "writing");
        if (!step([&] { return scene.write(options.output, error); }))
        {
            return ExitFailure;
        }
    }
    bar.clear();
    if (!options.quiet)
    {
        std::cout << options.output << ": " << options.width << " x " << options.height << " pixels"
                  << std::endl;
    }
    return ExitSuccess;
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
    TransferFunctionText function;
    if (!options.transferFunction.empty())
    {
        function = readTransferFunction(options.transferFunction);
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
    const int status = view(options, options.transferFunction.empty() ? nullptr : &function.points);
    osg::osgExit();
    return status;
}
