#pragma once
// Progressions and directions: the birth chart moved through symbolic time. Secondary takes the
// bodies of the day that stands for the year and moves the angles by the mean arc of the Sun;
// Solar Arc and OD shift the whole birth chart by one arc (the Sun's progressed motion, or one
// degree a year). Primary directions are not calculated.
#include "session/event.h"

#include <string>

namespace celestark {

struct Session;

// The kinds by the names the run and the charts use.
inline constexpr const char* progression_kinds[] = {"Secondary", "Primary", "Solar Arc", "OD"};

// The progressed chart into the engine's lists and houses: `base_row` is the birth, the date
// fields of `progressed_row` hold the stepped moment. False (nothing calculated) for a kind this
// version does not calculate.
bool calculate_progressed_event(Session& s, int base_row, int progressed_row,
                                const std::string& kind);

// The progressed Ascendant and Mid Heaven of a Secondary run at the stepped moment t, appended to
// the geocentric list with the glyphs "A" and "M". The run's fixed birth chart gives the
// sidereal time and the latitude.
void progress_angles(Session& s, double t);

// The row of a progressed chart: the base row's place and names at the moment jd (Universal
// Time), in Greenwich time, its event "Progressed".
void put_progressed_moment(EventRow& row, double jd);

// The symbolic moment that stands for the life date: a day for a year (Secondary, Solar Arc) or
// the life date itself (OD), forward or backward from the birth.
double progressed_moment(const std::string& kind, double birth_jd, double life_jd, int direction);

} // namespace celestark
