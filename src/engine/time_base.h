#pragma once
// The time base of a calculation, the fundamental lunar arguments and the nutation.
#include "session/positions.h"

namespace celestark {

// Sets the time base from a Universal Time Julian date.
void set_calculation_time(TimeBase& time, double jd);

// D, M, M', F and Omega with their multiples, from the ephemeris time.
void calculate_lunar_arguments(const TimeBase& time, LunarArguments& lunar);

// The mean obliquity (Laskar's polynomial in 32-bit floats), the thirteen-term nutation in
// longitude and the eleven-term nutation in obliquity.
void calculate_nutation(const TimeBase& time, const LunarArguments& lunar, Nutation& nutation);

} // namespace celestark
