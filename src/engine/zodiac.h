#pragma once
// The vernal point of the active zodiac: how far the zodiac's zero point stands from the tropical
// one at the working moment. Every longitude the program shows is the tropical one plus this.
namespace celestark {

struct Session;

// Sets zodiac_offset (radians) and zodiac_offset_degrees for the active zodiac: 0 for "Tropical";
// the Moon's node at 0 Aries for "Draconic"; for a star zodiac the star's place in the zodiac less
// its tropical longitude; for an epoch zodiac the vernal point's position carried by precession.
void calculate_vernal_point(Session& s);

// Julian centuries from J2000.0.
double centuries_from_j2000(double jd);

// The tropical longitude in degrees of a reference star of the sidereal zodiacs, T50 in Julian
// centuries from 1950.0; false for a name that is not one of the six.
bool reference_star_longitude(const char* star, double t50, double& degrees);

} // namespace celestark
