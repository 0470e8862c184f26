#pragma once
// Session values loaded from the option stores: the active zodiac's record and boundaries, the
// active aspect set as parallel lists, and the active colour set.
#include "session/colour_fields.h"

#include <array>
#include <cstdint>
#include <string>
#include <vector>

namespace celestark {

// A zodiac row as the zodiac window shows it.
struct ZodiacRecord {
    std::string name, defined, constellation, star, day, month, year, gj;
    int deg = 0, min = 0, sec = 0;
    std::array<int, 12> z_degs{}, z_mins{};
};

struct ZodiacState {
    std::string reference;     // the star's name, or "Epoch"; empty for "Tropical" and "Draconic"
    float star_longitude = 0;  // degrees: the star's longitude in the zodiac
    double epoch_position = 0; // degrees: the vernal point's position, referred to J2000.0
    std::array<float, 12> constellation_start{0,   30,  60,  90,  120, 150,
                                              180, 210, 240, 270, 300, 330};
    ZodiacRecord window; // the row last selected
};

// The active aspect set; entry i of every list belongs to aspect i, in the set's angle order.
struct AspectTable {
    std::int16_t aspect_count = 0;
    std::vector<float> angle; // degrees
    std::vector<std::string> digraph;
    std::vector<unsigned char> glyph; // symbol code 192 to 208, or a blank for other angles
    std::vector<std::int16_t> in_aspectogram;
    std::vector<float> orb_sun, orb_moon, orb_planets, orb_elements, orb_stars; // degrees
};

// A colour set: its name ("None" means monochrome), and the 138 values of the colour table in
// field order, colours as 0x00BBGGRR.
struct ColourSet {
    static constexpr int value_count = colour_field::count;
    std::string name = "None";
    std::string display_or_printer;
    std::array<std::int32_t, value_count> values{};
};

struct OptionSets {
    ZodiacState zodiac;
    AspectTable aspects;
    ColourSet colours;
    // The aspect set of transits, read beside the biography's by the biography reader.
    std::string aspect_set_transits;
};

} // namespace celestark
