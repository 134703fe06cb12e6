#ifndef TESTS_SUPPORT_XSERVER_H
#define TESTS_SUPPORT_XSERVER_H

/// \file
/// An X server of the test's own, without a screen.

#include <gtest/gtest.h>

#include <sys/types.h>

#include <string>

namespace test
{

/// Runs an Xvfb with one screen of 1280 x 1024 pixels, 24 bits deep, with GLX and XTest and without a window
/// manager, from start to the object's end. While it runs DISPLAY names it, for this process and those that
/// it starts; then DISPLAY is as it was. It ends with the process in any case. One thread at a time.
class XServer
{
public:
    XServer() = default;
    XServer(const XServer &) = delete;
    XServer &operator=(const XServer &) = delete;
    ~XServer();

    /// Returns once the server answers. False, with a line in getError, if there is none or it does not
    /// answer in time.
    bool start();
    /// Ends the server; does nothing if none runs.
    void stop();

    bool isRunning() const { return _process > 0; }
    /// As DISPLAY has it, ":7".
    const std::string &getDisplay() const { return _display; }
    const std::string &getError() const { return _error; }

private:
    pid_t _process = -1;
    std::string _display;
    std::string _error;
    bool _hadDisplay = false;
    std::string _oldDisplay;
};

/// Gives all tests of an executable a server: ::testing::AddGlobalTestEnvironment(new XServerEnvironment).
class XServerEnvironment : public ::testing::Environment
{
public:
    void SetUp() override { ASSERT_TRUE(_server.start()) << _server.getError(); }
    void TearDown() override { _server.stop(); }

private:
    XServer _server;
};

} // namespace test

#endif
