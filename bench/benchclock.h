#pragma once

// Timing of a phase inside a benchmark program, printed as a line that scripts/bench.sh
// reads:  "phase <name> wall <seconds> cpu <seconds>". CPU time is the process's, all
// threads together, so it counts the engine's deflate thread as well.

#include <chrono>
#include <cstdio>
#include <ctime>

namespace bench {

class Stopwatch
{
public:
    Stopwatch() { restart(); }

    void restart()
    {
        m_wall = std::chrono::steady_clock::now();
        m_cpu = std::clock();
    }

    double wallSeconds() const
    {
        return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_wall).count();
    }

    double cpuSeconds() const
    {
        return static_cast<double>(std::clock() - m_cpu) / CLOCKS_PER_SEC;
    }

    // Prints the phase and starts timing the next one.
    void report(const char* phase)
    {
        std::printf("phase %s wall %.6f cpu %.6f\n", phase, wallSeconds(), cpuSeconds());
        std::fflush(stdout);
        restart();
    }

private:
    std::chrono::steady_clock::time_point m_wall;
    std::clock_t m_cpu;
};

// A figure of the run other than a time, such as the number of cells read.
inline void reportFigure(const char* name, double value)
{
    std::printf("figure %s %.6f\n", name, value);
    std::fflush(stdout);
}

} // namespace bench
