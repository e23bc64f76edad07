#pragma once

/// Start-up tracing of the host layer: plain lines on the standard streams, switched on by the environment.
///
/// There are no levels: a line is either an error, which always goes to `stderr`, or anything else, which
/// goes to `stdout` while tracing is on. Every line ends in carriage return and line feed.
namespace trace {

/// Reads `COREHOST_TRACE` and switches tracing on when its value is a number of at least 1. Does nothing when
/// tracing is on already.
void initialize();

void enable();
void disable();
bool is_enabled();

/// Writes a line to `stderr`, whether tracing is on or not.
[[gnu::format(printf, 1, 2)]] void error(const char* format, ...);

/// Each of these writes a line to `stdout` while tracing is on.
[[gnu::format(printf, 1, 2)]] void warning(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void info(const char* format, ...);
[[gnu::format(printf, 1, 2)]] void verbose(const char* format, ...);

}  // namespace trace
