#pragma once

#include <string>
#include <vector>

namespace orvex::bench {

/// The middle one of the values, of which there is at least one.
double median(std::vector<double> values);

/// Prints one row of the table: what was measured, the median with its unit and the limit it has to
/// keep, and whether it does. Counts the rows that don't.
void print_row(const std::string& figure, double value, const char* unit, double limit);

/// How many rows have missed their limit so far.
int missed_rows();

/// Seconds of a steady clock, and of this process's work on the processor.
double wall_seconds();
double processor_seconds();

}  // namespace orvex::bench
