#pragma once

// While an InterruptionGuard lives, Ctrl-C (SIGINT) and SIGTERM do not end the
// process: they ask the GDAL provider's open edit operations to stop, so that an edit
// in progress is undone whole by its commit instead of being cut part way. Further
// signals are taken the same way, so a second Ctrl-C cannot stop the undo either.
class InterruptionGuard
{
public:
    InterruptionGuard();
    // Puts back the handlers that were there before.
    ~InterruptionGuard();

    InterruptionGuard(const InterruptionGuard&) = delete;
    InterruptionGuard& operator=(const InterruptionGuard&) = delete;

    // Whether a signal came while the guard stood.
    static bool interrupted();
};
