/**
    What can end a run, and with which exit status.

    UsageError: the command line makes no sense; nothing was touched. RenderError: something outside went
    wrong, a file that is missing, broken or cannot be written. Both carry one sentence without a full stop
    that can stand behind "ambrel-render: ". Interrupted: the user or the system asked the program to stop.
*/
#pragma once

#include <stdexcept>
#include <string>

namespace ambrel::render
{

enum ExitStatus : int
{
    exitSuccess = 0,
    exitFailure = 1,
    exitUsage = 2,
    exitSignalBase = 128 ///< plus the signal's number, as shells report it
};

class UsageError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class RenderError : public std::runtime_error
{
public:
    using std::runtime_error::runtime_error;
};

class Interrupted : public std::runtime_error
{
public:
    explicit Interrupted(int signalNumber) : std::runtime_error("interrupted"), signal(signalNumber) {}

    int signal;
};

} // namespace ambrel::render
