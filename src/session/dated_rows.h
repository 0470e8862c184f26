#pragma once
// A stored table of rows at dates, as the engine reads the tables of its table-driven bodies. The
// store provides it; the engine keeps the rows it has read in memory.
#include <cstdint>
#include <vector>

namespace celestark {

class DatedRowSource {
  public:
    virtual ~DatedRowSource() = default;
    // The number of rows, and the dates of the first two rows and of the last.
    virtual std::int64_t count() const = 0;
    virtual double first_date() const = 0;
    virtual double second_date() const = 0;
    virtual double last_date() const = 0;
    // Up to `n` rows in date order from the first dated at or after `from`, each its date and its
    // values (as many as the table has columns). False when the rows cannot be read.
    virtual bool read(double from, std::int64_t n, std::vector<double>& dates,
                      std::vector<double>& values) = 0;
};

} // namespace celestark
