/**
    Runs ambrel-render as a user does: with a home of its own, without a display, its outputs caught.
*/
#pragma once

#include "tests/support/TemporaryFolder.h"

#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <functional>
#include <sys/resource.h>
#include <sys/wait.h>
#include <thread>
#include <unistd.h>
#include <vector>

namespace ambrel::render::test
{

struct Outcome
{
    int status = -1; ///< exit status; 1000 and the signal if it was killed
    std::string output;
    std::string error;
};

struct RunOptions
{
    std::function<bool()> interruptWhen;     ///< asked again and again; then SIGINT is sent once
    rlim_t largestFileBytes = RLIM_INFINITY; ///< a file that grows beyond it fails, as on a full disk
};

/** @param home  receives what the program writes at home, and its two outputs */
inline Outcome run(const TemporaryFolder& home, const std::vector<std::string>& arguments,
                   const RunOptions& options = {})
{
    const pid_t process = fork();
    if (process == 0)
    {
        setenv("HOME", home.path("").c_str(), 1);
        unsetenv("XDG_CONFIG_HOME");
        unsetenv("DISPLAY");
        const rlimit limit{options.largestFileBytes, options.largestFileBytes};
        setrlimit(RLIMIT_FSIZE, &limit);
        std::vector<char*> words{const_cast<char*>(AMBREL_RENDER_PROGRAM)};
        for (const std::string& argument : arguments)
            words.push_back(const_cast<char*>(argument.c_str()));
        words.push_back(nullptr);
        dup2(creat(home.path("stdout").c_str(), 0600), STDOUT_FILENO);
        dup2(creat(home.path("stderr").c_str(), 0600), STDERR_FILENO);
        execv(words[0], words.data());
        _exit(127);
    }

    int status = 0;
    if (options.interruptWhen)
    {
        while (!options.interruptWhen() && waitpid(process, &status, WNOHANG) == 0)
            std::this_thread::sleep_for(std::chrono::milliseconds(5));
        kill(process, SIGINT);
    }
    waitpid(process, &status, 0);
    return {WIFEXITED(status) ? WEXITSTATUS(status) : 1000 + WTERMSIG(status), home.read("stdout"),
            home.read("stderr")};
}

} // namespace ambrel::render::test
