#pragma once
// The values of a predictive run (transits, the astrological biography, progressions): the
// parameters read from the screen, the run's own values, the five-slot sample window, the fixed
// charts and the table of hits. A run may stop at a full page and go on later, so everything it
// needs lives here and nothing on a call stack.
#include "session/positions.h"

#include <array>
#include <cstdint>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace celestark {

class BodyFits;

// Every box, button and field of the run's screen by its control name. Option buttons read -1
// or 0, check boxes 1 or 0; the run tests a flag for being other than 0.
struct PredictiveParameters {
    std::string mode = "T"; // "B" biography, "T" transits, "P" progressions
    std::map<std::string, std::int16_t, std::less<>> flags;
    std::map<std::string, std::string, std::less<>> texts;
    // A step of the caller's own (days; 0 takes the run's table), as the phenomena list has.
    float step = 0;

    bool on(std::string_view control) const {
        const auto it = flags.find(control);
        return it != flags.end() && it->second != 0;
    }
    std::string text(std::string_view control) const {
        const auto it = texts.find(control);
        return it == texts.end() ? std::string() : it->second;
    }
};

// One row of the hit table.
struct Hit {
    std::string kind;     // "A", "B", "E", "RA", "RB", "RE", "IC", "IS", "IH", "R", "M", "S"
    double date = 0;      // the stepped moment
    double life_date = 0; // the life date it stands for; the order of the report
    double pos_1 = 0;     // radians
    std::string body_1, retro_1;
    double pos_2 = 0;
    std::string body_2, retro_2;
    std::string note;         // of a station: "R" turning retrograde, "D" turning direct
    std::string aspect_glyph; // or "F" / "R" for a recurrence, the type of an eclipse
    std::string aspect_name;  // the aspect's digraph
    std::string orb_kind;     // "" exact; "AE", "AL", "SL", "SE" an orb crossing; "TO", "FROM"
    std::string target_glyph; // an ingress: the place entered or left
    std::string target_next;  // and the place next to it
    double value = 0;
};

// The position lists of one sample of the window.
struct Sample {
    double time = 0;
    std::array<double, geo_capacity> geo{};
    std::array<double, helio_capacity> helio{}, helio_node{}, helio_peri{};
    std::array<double, lemni_capacity> lemni{};
};

// A chart kept for the whole run: its lists, their glyphs and retrograde marks, and the cusps.
struct FixedChart {
    double jd = 0;
    int geo_count = 0, helio_count = 0, lemni_count = 0;
    std::array<double, geo_capacity> geo{};
    std::array<unsigned char, geo_capacity> geo_glyph{};
    std::array<char, geo_capacity> geo_retro{};
    std::array<double, helio_capacity> helio{}, helio_node{}, helio_peri{};
    std::array<unsigned char, helio_capacity> helio_glyph{};
    std::array<double, lemni_capacity> lemni{};
    std::array<unsigned char, lemni_capacity> lemni_glyph{};
    std::array<char, lemni_capacity> lemni_retro{};
    std::array<double, 13> cusps{}; // 1 to 12
    double sun = 0, moon = 0;       // the references of the true projection
    double local_sidereal_hours = 0, latitude_deg = 0;
};

// What the run's screen chose, in the forms the run tests.
struct RunChoices {
    bool aspects = false, orb = false, recur = false, houses = false, signs = false,
         constellations = false, retro = false, eclipses = false;
    std::string world_view = "Geocentric"; // the run's own: also "Geo/Helio" and the others
    bool self = false;
    // The passes of the aspect search: moving set, the epoch chart, the birth chart.
    bool pass_moving = false, pass_epoch = false, pass_birth = false;
    std::string progression; // "Secondary", "Primary", "Solar Arc", "OD" in mode "P"
};

struct PredictiveRun {
    std::int16_t run_phase = 0; // 0 new, 1 restart, 2 restart at a new date, 3 continue, -1
    std::int16_t run_direction = 1;
    std::int16_t ab_mode = 2; // 1 epoch to birth, 2 birth forward, 3 birth to epoch
    bool ab_prenatal = true;
    std::int16_t projection_mode = 1; // 1 mean, 2 true
    double time_ratio = 1.0;
    double time_ratio_code = 1.0;
    double precession_degree_days = 0;
    double birth_jd = 0, epoch_jd = 0, stepped_origin = 0, stepped_end = 0;
    double life_start = 0, life_end = 0, scan_start = 0, run_cursor = 0;
    float run_step = 1.0f;
    std::int16_t search_toggle = 0;
    double zone_hours = 0; // the report's zone, hours east of Greenwich
    std::string zone_code = "GMT";
    RunChoices choices;

    FixedChart birth, epoch;
    // The window: slot 0 is the oldest, slot 4 the newest; the life set beside the stepped one.
    std::array<Sample, 5> window, life;
    int geo_count = 0, helio_count = 0, lemni_count = 0;
    std::array<unsigned char, geo_capacity> geo_glyph{};
    std::array<unsigned char, helio_capacity> helio_glyph{};
    std::array<unsigned char, lemni_capacity> lemni_glyph{};
    // Lemnicentric places rebuilt across a crossing of the lemniscate in the current window.
    std::array<bool, 4> lemni_rebuilt{};

    // The bodies from fitted series (false: every moment calculated), for the stepped moments
    // and for the life dates; made at the start of a run.
    bool use_fits = true;
    std::shared_ptr<BodyFits> stepped_fits, life_fits;

    // The eclipses of the run's span (geocentric and Tychonic runs with eclipses asked for):
    // kind "S" or "M", type, moment of greatest eclipse (Universal Time), the Sun's and the
    // Moon's longitudes then.
    struct EclipseEntry {
        std::string kind, type;
        double date = 0, sun = 0, moon = 0;
    };
    std::vector<EclipseEntry> eclipses;

    std::vector<Hit> hits;
    int page = 0;
    bool finished = false;
    double progress_date = 0; // the date the progress shows
    int progress_percent = 0;
};

} // namespace celestark
