#pragma once
// Uranus, Neptune, Pluto, the four asteroids and Chiron from stored tables of heliocentric
// rectangular positions at an even step, interpolated to the moment by the five-point rule.
// The rows are read once into memory; a position then costs a search and an interpolation.
#include "session/dated_rows.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

namespace celestark {

struct Session;

// One stored table, read into memory chunk by chunk as moments ask for its rows: a position then
// costs a search and an interpolation. Tables at an even step (as the program writes them) are
// read in chunks of `chunk_rows`; any other table is read whole at the first use.
class BodyTable {
  public:
    static constexpr std::int64_t chunk_rows = 2048;

    BodyTable();
    ~BodyTable();
    BodyTable(BodyTable&&) noexcept;
    BodyTable& operator=(BodyTable&&) noexcept;

    // Reads a stored table through `source` (`columns` values a row), chunk by chunk as moments
    // ask. False for a table of fewer than six rows, which cannot answer.
    bool attach(std::unique_ptr<DatedRowSource> source, int columns);
    // A table made in memory (dates ascending at any step), for tests and tools.
    void assign(std::vector<double> dates, std::vector<double> values, int columns);

    bool loaded() const;
    std::int64_t rows() const;
    double first_date() const;
    double last_date() const;
    double step() const;

    // The reading rule: the last row before `jde`, back two rows, a six-row window, the shift when
    // the moment lies past the middle of its interval, and five-point interpolation of the
    // columns `first`..`first + 2`. False when the table cannot answer for the moment.
    bool position(double jde, int first, std::array<double, 3>& xyz) const;

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

struct BodyTables {
    BodyTable planets;   // outer3.mdb: Uranus, Neptune, Pluto
    BodyTable asteroids; // asteroid.mdb: Juno, Vesta, Ceres, Pallas
    BodyTable chiron;    // asteroid.mdb: Chiron
};

// Uranus, Neptune and Pluto through light time into helio entries 6 to 8.
void calculate_uranus(Session& s, double jd);
void calculate_neptune(Session& s, double jd);
void calculate_pluto(Session& s, double jd);
// Chiron and the asteroids, each growing the three lists when its table answers.
void calculate_chiron(Session& s, double jd);
void calculate_juno(Session& s, double jd);
void calculate_vesta(Session& s, double jd);
void calculate_ceres(Session& s, double jd);
void calculate_pallas(Session& s, double jd);

// Heliocentric rectangular coordinates into a helio entry, and its geocentric place one above.
void store_table_body(Session& s, double x, double y, double z, int entry);

} // namespace celestark
