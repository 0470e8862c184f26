#pragma once
// Angle normalisation, differences and inverse trigonometry in the system's own forms, with
// single-precision twins for the drawing code. Radians unless a name says degrees.

namespace celestark {

double norm_mod(double a, double modulus);
double norm_rad(double a);
double norm_deg(double a);
int norm_int_deg(int n);

double rad_diff(double a, double b);
double rad_sep(double a, double b);
double deg_diff(double a, double b);

double arcsin(double x);
double arccos(double x);
double arctan2(double y, double x);

float norm_mod(float a, float modulus);
float norm_rad(float a);
float norm_deg(float a);
float rad_diff(float a, float b);
float rad_sep(float a, float b);
float deg_diff(float a, float b);
float arctan2(float y, float x);

// The general precession in longitude since J2000, degrees, for t in Julian centuries.
double general_precession(double t);

// The obliquity of the J2000 ecliptic, degrees, that the catalogue conversion uses.
inline constexpr double j2000_obliquity_deg = 23.4392911;

// J2000 equatorial to J2000 ecliptic coordinates, radians. The longitude is that of arctan2 (-pi
// to pi).
void equatorial_to_ecliptic_j2000(double ra, double dec, double& longitude, double& latitude);

// Five-point central-difference interpolation about the middle value y3; n from -0.5 to 0.5 is
// its best range.
double interpolate5(double n, double y1, double y2, double y3, double y4, double y5);

} // namespace celestark
