// What this machine's core can do at most, measured by loops that do nothing else.
#pragma once

namespace plain {

// Fused multiply-additions in single precision, counted as two operations each: operations per nanosecond.
double peakOperations();

// Reading over and over what is that large: bytes per nanosecond, of the level of cache that holds it.
double readBandwidth(double bytes);

} // namespace plain
