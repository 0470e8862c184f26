#include "engine/zodiac.h"

#include "engine/moon.h"
#include "session/angles.h"
#include "session/constants.h"
#include "session/session.h"

#include <cstring>

namespace celestark {

double centuries_from_j2000(double jd) {
    return (jd - j2000) / days_per_century;
}

bool reference_star_longitude(const char* star, double t50, double& degrees) {
    // Base longitude at 1950.0 and the motion in longitude a century. Aldebaran's motion is in
    // degrees and the others' in seconds of arc, and Alcyone and Regulus add while Pollux, Spica
    // and Antares subtract: each row is part of its zodiac as it stands.
    const double p = general_precession(t50);
    if (std::strcmp(star, "Aldebaran") == 0)
        degrees = 69.09005 + 0.0010055 * t50 + p;
    else if (std::strcmp(star, "Alcyone") == 0)
        degrees = 59 + (17 + 38.41 / 60) / 60 + (0.93 / 3600) * t50 + p;
    else if (std::strcmp(star, "Pollux") == 0)
        degrees = 112 + (31 + 31.34 / 60) / 60 - (61.4 / 3600) * t50 + p;
    else if (std::strcmp(star, "Regulus") == 0)
        degrees = 149 + (8 + 2.03 / 60) / 60 + (-21.61 / 3600) * t50 + p;
    else if (std::strcmp(star, "Spica") == 0)
        degrees = 203 + (8 + 36.36 / 60) / 60 - (2.4 / 3600) * t50 + p;
    else if (std::strcmp(star, "Antares") == 0)
        degrees = 249 + (3 + 50.21 / 60) / 60 - (0.19 / 3600) * t50 + p;
    else
        return false;
    return true;
}

void calculate_vernal_point(Session& s) {
    EngineState& e = s.engine;
    const std::string& zodiac = s.chart.zodiac;
    const ZodiacState& z = s.option_sets.zodiac;
    const double t = e.time.t_ut;
    double offset = 0;
    if (zodiac == "Tropical") {
        offset = 0;
    } else if (zodiac == "Draconic") {
        // The node at 0 Aries: the mean node with moon_node 2, otherwise the osculating node,
        // taken without the zodiac's own offset.
        e.zodiac_offset = 0;
        if (s.chart.moon_node != 2) calculate_moon_points(s, false);
        offset = -(s.chart.moon_node == 2 ? e.lunar.omega : e.true_node) * rad_to_deg;
    } else if (z.reference == "Epoch") {
        offset = z.epoch_position - general_precession(t);
    } else {
        double star = 0;
        if (!reference_star_longitude(z.reference.c_str(), t + 0.5, star)) {
            session_fatal(s, "CALCULATE VERNAL POINT",
                          "CK13-This is a fatal error. Please contact Ivan Marlow");
            return;
        }
        offset = static_cast<double>(z.star_longitude) - star;
    }
    e.zodiac_offset_degrees = norm_deg(offset);
    e.zodiac_offset = e.zodiac_offset_degrees * deg_to_rad;
}

} // namespace celestark
