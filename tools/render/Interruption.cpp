#include "tools/render/Interruption.h"

#include "tools/render/Errors.h"

#include <csignal>

namespace ambrel::render::Interruption
{

namespace
{

volatile std::sig_atomic_t requestedSignal = 0;

extern "C" void noteSignal(int signal) { requestedSignal = signal; }

/** A signal that the caller had ignored, as nohup does, stays ignored. */
void watch(int signal)
{
    if (std::signal(signal, noteSignal) == SIG_IGN)
        std::signal(signal, SIG_IGN);
}

} // namespace

void install()
{
    watch(SIGINT);
    watch(SIGTERM);
#ifdef SIGHUP
    watch(SIGHUP);
#endif
#ifdef SIGPIPE
    std::signal(SIGPIPE, SIG_IGN);
#endif
#ifdef SIGXFSZ
    std::signal(SIGXFSZ, SIG_IGN);
#endif
}

void throwIfRequested()
{
    if (requestedSignal != 0)
        throw Interrupted(requestedSignal);
}

} // namespace ambrel::render::Interruption
