#pragma once
// What the SIDEREAL ZODIAC OPTIONS window does with a zodiac row: check the fields in their order,
// save (edit at the bookmark, or add a row), and delete. The window itself only shows the fields.
#include "session/messages.h"

#include <array>
#include <string>
#include <vector>

namespace celestark {

struct Session;

// The fields as typed.
struct ZodiacWindow {
    std::string z_name, z_defined, z_constellation, z_star;
    std::string z_deg, z_min, z_sec;
    std::string z_day, z_month, z_year, z_gj;
    std::array<std::string, 12> z_degs, z_mins; // Aries to Pisces
    std::string bookmark;                       // empty for a new zodiac
    bool changed = false;
};

// The stars a star zodiac may name, in the order of the drop-down list.
inline constexpr std::array<const char*, 6> zodiac_stars = {"Alcyone", "Aldebaran", "Pollux",
                                                            "Regulus", "Spica",     "Antares"};

struct ZodiacCheck {
    bool ok = true;
    std::string field;                 // the control that takes focus at the first fault
    std::vector<std::string> messages; // the lines of the input error list
};

// Checks the fields in order and stops at the first fault. A star zodiac's date fields are set
// to 0, 0, 0, "G"; an epoch zodiac's star to a blank; an equal zodiac's boundaries to "0". The
// fault's lines go to the sink's input error list too.
ZodiacCheck check_zodiac_window(ZodiacWindow& w, MessageSink& sink);

// The fields of a stored row, as the window shows them.
ZodiacWindow zodiac_to_window(Session& s, const std::string& bookmark);

enum class ZodiacSave { saved, invalid, duplicate_name, failed };
// Checks, then writes the row: at the bookmark, or as a new row whose bookmark the window keeps.
ZodiacSave save_zodiac(Session& s, ZodiacWindow& w, MessageSink& sink);

// A zodiac is in use when the chart options name it as `zodiac` or `zodiac_ephemeris`, or the
// listing options as `listings_zodiac`.
bool zodiac_in_use(Session& s, const std::string& name);

enum class ZodiacDelete { deleted, declined, standard_zodiac, in_use, failed };
ZodiacDelete delete_zodiac(Session& s, ZodiacWindow& w, MessageSink& sink);

// The names of the stored zodiacs for the window's list, or the one line
// "NO SIDEREAL ZODIACS TO EDIT".
std::vector<std::string> zodiac_list(Session& s);

inline constexpr const char* standard_sidereal_zodiac = "Sidereal SVP";

} // namespace celestark
