#pragma once
// Time zone trigraphs: each zone has a standard, a daylight-saving and a wartime trigraph.
#include <array>
#include <string>
#include <string_view>

namespace celestark {

struct Zone {
    std::string_view standard, dst, war;
    float hours_west; // positive west of Greenwich
    std::string_view meridian_degrees, meridian_minutes, meridian_ew;
    std::string_view name;
};

// The standard zones in the order of the zone screen. Two rows differ from what their meridian
// suggests and are kept so: OZT counts 1 hour west, and IRT's meridian is 57 30 E.
inline constexpr std::array<Zone, 32> zones = {{
    {"NZT", "NZD", "NZW", -12.0f, "180", "0", "E", "New Zealand Time"},
    {"OZT", "OZD", "OZW", 1.0f, "172", "30", "E", "Old New Zealand Time"},
    {"Z11", "11D", "11W", -11.0f, "165", "0", "E", "Zone11(USSR Zone 10)"},
    {"GST", "GSD", "GSW", -10.0f, "150", "0", "E", "Guam Standard Time"},
    {"SAT", "SAD", "SAW", -9.5f, "142", "30", "E", "South Australia Time"},
    {"JST", "JSD", "JSW", -9.0f, "135", "0", "E", "Japan Standard Time"},
    {"CCT", "CCD", "CCW", -8.0f, "120", "0", "E", "China Coast Time"},
    {"SST", "SSD", "SSW", -7.0f, "105", "0", "E", "South Sumatra Time"},
    {"NST", "NSD", "NSW", -6.5f, "97", "30", "E", "North Sumatra Time"},
    {"R5T", "R5D", "R5W", -6.0f, "90", "0", "E", "Russia Zone 5"},
    {"INT", "IND", "INW", -5.5f, "82", "30", "E", "India Time"},
    {"R4T", "R4D", "R4W", -5.0f, "75", "0", "E", "Russia Zone 4"},
    {"R3T", "R3D", "R3W", -4.0f, "60", "0", "E", "Russia Zone 3"},
    {"IRT", "IRD", "IRW", -3.5f, "57", "30", "E", "Iran Time"},
    {"BGT", "BGD", "BGW", -3.0f, "45", "0", "E", "Baghdad Time"},
    {"KET", "KED", "KEW", -2.5f, "37", "30", "E", "Kenya Time"},
    {"EET", "EED", "EEW", -2.0f, "30", "0", "E", "Eastern European Time"},
    {"CET", "CED", "CEW", -1.0f, "15", "0", "E", "Central European Time"},
    {"GMT", "GMD", "GMW", 0.0f, "0", "0", "W", "Greenwich Mean Time"},
    {"WAT", "WAD", "WAW", 1.0f, "15", "0", "W", "West Africa Time"},
    {"AZT", "AZD", "AZW", 2.0f, "30", "0", "W", "Azores Time"},
    {"BZT", "BZD", "BZW", 3.0f, "45", "0", "W", "Brazil (Zone 2)"},
    {"NFT", "NFD", "NFW", 3.5f, "52", "30", "W", "Newfoundland Time"},
    {"AST", "ADT", "AWT", 4.0f, "60", "0", "W", "Atlantic Standard Time"},
    {"EST", "EDT", "EWT", 5.0f, "75", "0", "W", "Eastern Standard Time"},
    {"CST", "CDT", "CWT", 6.0f, "90", "0", "W", "Central Standard Time"},
    {"MST", "MDT", "MWT", 7.0f, "105", "0", "W", "Mountain Standard Time"},
    {"PST", "PDT", "PWT", 8.0f, "120", "0", "W", "Pacific Standard Time"},
    {"YST", "YDT", "YWT", 9.0f, "135", "0", "W", "Yukon Standard Time"},
    {"AHT", "AHD", "AHW", 10.0f, "150", "0", "W", "Alaska(central)-Hawaii Time"},
    {"HST", "HSD", "HSW", 10.5f, "157", "30", "W", "Hawaiian Standard Time"},
    {"NAT", "NAD", "NAW", 11.0f, "165", "0", "W", "Nome, Alaska Time"},
}};

// Sets `hours` from the first three characters of `text` when they are one of the 32 standard
// trigraphs; an unknown trigraph returns false and leaves `hours` alone.
bool zone_hours_west(std::string_view text, float& hours);

struct ZoneMeridian {
    std::string degrees, ew, minutes;
    std::string dst; // "1" for a daylight-saving or wartime trigraph, "0" for a standard one
    bool unknown = true;
};
// The meridian of any of the 96 trigraphs, as text.
ZoneMeridian zone_meridian(std::string_view trigraph);

// The lines of the zone screen, the table printed as its own list.
std::string time_zones_text();

} // namespace celestark
