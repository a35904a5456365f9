#pragma once

#include <chrono>
#include <string>
#include <vector>

using Clock = std::chrono::steady_clock;

inline double Microseconds(Clock::duration duration)
{
    return std::chrono::duration<double, std::micro>(duration).count();
}

inline double Seconds(Clock::duration duration) { return std::chrono::duration<double>(duration).count(); }

/// The value below which the given share (0 to 1) of the samples lies, by nearest rank. There must be samples.
double Quantile(std::vector<double> samples, double share);

inline double Median(const std::vector<double>& samples) { return Quantile(samples, 0.5); }

/// At most four digits that count, no needless zeros.
std::string ShortNumber(double number);

/// Keeps the compiler from dropping the work that led to this value.
template <class T> inline void Use(const T& value) { asm volatile("" : : "g"(&value) : "memory"); }

/// Runs two kinds of work in turn and gives the median cost of one call of each, in nanoseconds.
/// \param batch calls that are timed together, so that the clock does not count
template <class Ours, class Bare>
std::pair<double, double> NanosecondsInTurn(int batches, int batch, Ours ours, Bare bare)
{
    std::vector<double> oursTimes;
    std::vector<double> bareTimes;
    const auto time = [batch](auto& work) {
        const auto start = Clock::now();
        for (int i = 0; i < batch; ++i)
            work();
        return Microseconds(Clock::now() - start) * 1000 / batch;
    };
    time(ours); // both once for warmth
    time(bare);
    for (int i = 0; i < batches; ++i) {
        oursTimes.push_back(time(ours));
        bareTimes.push_back(time(bare));
    }
    return {Median(oursTimes), Median(bareTimes)};
}
