#pragma once
// Fixed tables, filled once and never changed: calendar names, month lengths, the delta T table,
// the obliquity polynomial, the lunar mansions and the glyph codes of the symbol font.
#include <array>
#include <cstdint>
#include <string_view>

namespace celestark {

inline constexpr std::array<std::string_view, 12> month_names = {
    "January", "February", "March",     "April",   "May",      "June",
    "July",    "August",   "September", "October", "November", "December"};
inline constexpr std::array<std::string_view, 12> month_short = {
    "JAN", "FEB", "MAR", "APR", "MAY", "JUN", "JUL", "AUG", "SEP", "OCT", "NOV", "DEC"};

// Index 0 to 7: the day number runs 1 to 7 with Monday as 1, so Sunday stands at both ends.
inline constexpr std::array<std::string_view, 8> day_names = {
    "Sunday", "Monday", "Tuesday", "Wednesday", "Thursday", "Friday", "Saturday", "Sunday"};
inline constexpr std::array<std::string_view, 8> day_short = {"SU", "MO", "TU", "WE",
                                                              "TH", "FR", "SA", "SU"};

inline constexpr std::array<int, 12> month_days = {31, 28, 31, 30, 31, 30, 31, 31, 30, 31, 30, 31};
// Days before the month, less one, in a common year.
inline constexpr std::array<int, 12> month_offset = {-1,  30,  58,  89,  119, 150,
                                                     180, 211, 242, 272, 303, 333};

// Delta T in tenths of a second for every second year from 1620 (entry 0) to 1992 (entry 186).
inline constexpr int delta_t_first_year = 1620;
inline constexpr std::array<std::int16_t, 187> delta_t_table = {
    1240, 1150, 1060, 980, 910, 850, 790, 740, 700, 650, 620, 580, 550, 530, 500, 480, 460,
    440,  420,  400,  370, 350, 330, 310, 280, 260, 240, 220, 200, 180, 160, 140, 130, 120,
    110,  100,  90,   90,  90,  90,  90,  90,  90,  90,  100, 100, 100, 100, 100, 110, 110,
    110,  110,  110,  110, 110, 110, 120, 120, 120, 120, 120, 130, 130, 130, 130, 140, 140,
    140,  150,  150,  150, 150, 160, 160, 160, 160, 160, 170, 170, 170, 170, 170, 170, 170,
    170,  160,  160,  150, 140, 137, 131, 127, 125, 125, 125, 125, 125, 125, 123, 120, 114,
    106,  96,   86,   75,  66,  60,  57,  56,  57,  59,  62,  65,  68,  71,  73,  75,  77,
    78,   79,   75,   64,  54,  29,  16,  -10, -27, -36, -47, -54, -52, -55, -56, -58, -59,
    -62,  -64,  -61,  -47, -27, 0,   26,  54,  77,  105, 134, 160, 182, 202, 212, 224, 235,
    239,  243,  240,  239, 239, 237, 240, 243, 253, 262, 273, 282, 291, 300, 307, 314, 322,
    331,  340,  350,  365, 383, 402, 422, 445, 465, 485, 505, 522, 538, 549, 558, 569, 580};

// Mean obliquity in arc seconds: Laskar's polynomial in U = T / 100, powers 0 to 10, held in
// 32-bit floats (so the constant term is in fact 84381.445).
inline constexpr std::array<float, 11> obliquity_coeffs = {84381.448f, -4680.93f, -1.55f,  1999.25f,
                                                           -51.38f,    -249.67f,  -39.05f, 7.12f,
                                                           27.87f,     5.79f,     2.45f};

// The 28 lunar mansions, index 1 to 28 (index 0 unused): from Krittika, with Abhijit twentieth.
inline constexpr std::array<std::string_view, 29> nakshatra_names = {"",
                                                                     "Krittika",
                                                                     "Rohini",
                                                                     "Mrigasiras",
                                                                     "Ardra",
                                                                     "Punarvasu",
                                                                     "Pushya",
                                                                     "Aslesha",
                                                                     "Magha",
                                                                     "Purvaphalguni",
                                                                     "Uttaraphalguni",
                                                                     "Hasta",
                                                                     "Chitra",
                                                                     "Svati",
                                                                     "Visakha",
                                                                     "Anuradha",
                                                                     "Jyestha",
                                                                     "Mula",
                                                                     "Purvashadha",
                                                                     "Uttarashadha",
                                                                     "Abhijit",
                                                                     "Sravana",
                                                                     "Dhanistha",
                                                                     "Satabhisaj",
                                                                     "Purvabhadrapada",
                                                                     "Uttarabhadrapada",
                                                                     "Revati",
                                                                     "Asvini",
                                                                     "Bharani"};

// Character codes of the symbol font. These codes are the identifiers of every symbol in charts
// and reports; the drawing layer maps each one to what is drawn.
namespace glyph {
inline constexpr unsigned char sun = 161, moon = 162, mercury = 163, venus = 164, mars = 165,
                               jupiter = 166, saturn = 167, uranus = 168, neptune = 169,
                               pluto = 170, earth = 171, chiron = 172, part_of_chiron = 173,
                               north_node = 176, south_node = 177, perigee = 180, apogee = 181,
                               quaoar = 223, sedna = 224, part_of_fortune = 225, ceres = 226,
                               pallas = 227, vesta = 228, juno = 229, ascendant = 238,
                               descendant = 239, midheaven = 240, imum_coeli = 241, degree = 248,
                               minute = 249;
} // namespace glyph

// The names of the Sun to Pluto and the Earth, by their glyphs from glyph::sun on, as the
// command line and the run's screen call them.
inline constexpr std::array<std::string_view, 11> body_words = {
    "sun",    "moon",   "mercury", "venus", "mars", "jupiter",
    "saturn", "uranus", "neptune", "pluto", "earth"};

// Aries to Pisces, with a thirteenth entry repeating Aries so that a position rounded up to 360
// degrees still shows in Aries.
inline constexpr std::array<unsigned char, 13> sign_glyphs = {209, 210, 211, 212, 213, 214, 215,
                                                              216, 217, 218, 219, 220, 209};
inline constexpr std::array<unsigned char, 17> aspect_glyphs = {
    192, 193, 194, 195, 196, 197, 198, 199, 200, 201, 202, 203, 204, 205, 206, 207, 208};

} // namespace celestark
