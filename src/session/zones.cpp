#include "session/zones.h"

#include "session/text.h"

namespace celestark {

bool zone_hours_west(std::string_view text, float& hours) {
    const std::string_view key = text.substr(0, 3);
    for (const Zone& z : zones) {
        if (z.standard == key) {
            hours = z.hours_west;
            return true;
        }
    }
    return false;
}

ZoneMeridian zone_meridian(std::string_view trigraph) {
    ZoneMeridian m;
    for (const Zone& z : zones) {
        const bool standard = z.standard == trigraph;
        if (standard || z.dst == trigraph || z.war == trigraph) {
            m.degrees = z.meridian_degrees;
            m.minutes = z.meridian_minutes;
            m.ew = z.meridian_ew;
            m.dst = standard ? "0" : "1";
            m.unknown = false;
            return m;
        }
    }
    return m;
}

std::string time_zones_text() {
    std::string out = "The following are the International Time Zones.\r\n"
                      "Zones under DST are Summer Time with a saving of 1 hour\r\n"
                      "Zones under WAR are for WARTIME with a Saving of 1 hours\r\n"
                      "ZONE  DST   WAR   Meridian    NAME\r\n";
    for (const Zone& z : zones) {
        // The meridian column is in signed degrees, east negative. Iran's line has always shown
        // -52.5 although its meridian fields say 57 30 E; the calculation uses the fields.
        double meridian =
            text_to_number(z.meridian_degrees) + text_to_number(z.meridian_minutes) / 60.0;
        if (z.meridian_ew == "E") meridian = -meridian;
        if (z.standard == "IRT") meridian = -52.5;
        out += pad_right(std::string(z.standard), 6) + pad_right(std::string(z.dst), 6) +
               pad_right(std::string(z.war), 6) + pad_right(number_text(meridian), 12) +
               std::string(z.name) + "\r\n";
    }
    out += "NB The drop menu only allows the standard time zones.\r\n";
    return out;
}

} // namespace celestark
