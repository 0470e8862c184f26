#pragma once
// The system's own numeric constants. These 15-digit values, not the full-precision ones, are what
// every angle operation uses, so that results agree to the last bit wherever they are compared.

namespace celestark {

inline constexpr double pi = 3.14159265358979;
inline constexpr double two_pi = 6.28318530717958;
inline constexpr double half_pi = pi / 2.0;
inline constexpr double deg_to_rad = 0.017453292519943278;
inline constexpr double rad_to_deg = 57.29577951308238;
inline constexpr double arcsec_to_rad = 4.848136811095355e-6;
inline constexpr double j2000 = 2451545.0;
inline constexpr double days_per_century = 36525.0;

inline constexpr float pi_f = 3.14159265358979f;
inline constexpr float two_pi_f = 6.28318530717958f;

} // namespace celestark
