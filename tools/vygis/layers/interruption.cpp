#include "interruption.h"

#include "tsgdal.h"

#include <csignal>

namespace {

using Handler = void (*)(int);

// Does no more than a signal handler may: set a lock-free flag, and take the signal
// again where the system put the default handler back before calling this one.
extern "C" void requestInterruption(int signal)
{
    std::signal(signal, requestInterruption);
    VyObjects::TsGdalDataSource::interruptOperations();
}

Handler previousInterrupt = SIG_DFL;
Handler previousTerminate = SIG_DFL;

} // namespace

InterruptionGuard::InterruptionGuard()
{
    previousInterrupt = std::signal(SIGINT, requestInterruption);
    previousTerminate = std::signal(SIGTERM, requestInterruption);
}

InterruptionGuard::~InterruptionGuard()
{
    std::signal(SIGINT, previousInterrupt == SIG_ERR ? SIG_DFL : previousInterrupt);
    std::signal(SIGTERM, previousTerminate == SIG_ERR ? SIG_DFL : previousTerminate);
}

bool InterruptionGuard::interrupted()
{
    return VyObjects::TsGdalDataSource::operationsInterrupted();
}
