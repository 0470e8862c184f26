#include "aspects/aspect_orbs.h"

#include "session/messages.h"
#include "session/session.h"

#include <string>
#include <vector>

namespace celestark {

namespace {

// The tag check of every orb operation: false after the fatal box.
bool tag_ok(Session& s, std::string_view tag, const char* operation, int code) {
    if (tag == "B") return true;
    session_fatal(s, operation, "CK" + std::to_string(code) + "-" + fatal_tail);
    return false;
}

// Element aspect_index - 1 of a list, or 0 outside the set.
float orb_of(const std::vector<float>& orbs, int aspect_index) {
    if (aspect_index < 1 || static_cast<std::size_t>(aspect_index) > orbs.size()) return 0.0f;
    return orbs[static_cast<std::size_t>(aspect_index - 1)];
}

// Planets, then the Moon's number in the pair, then the Sun's: the later assignment wins.
float pair_orb(const AspectTable& t, int body_a, int body_b, int moon, int aspect_index) {
    float orb = orb_of(t.orb_planets, aspect_index);
    if (body_a == moon || body_b == moon) orb = orb_of(t.orb_moon, aspect_index);
    if (body_a == 1 || body_b == 1) orb = orb_of(t.orb_sun, aspect_index);
    return orb;
}

} // namespace

float aspect_orb_geo(Session& s, std::string_view tag, int body_a, int body_b, int aspect_index) {
    if (!tag_ok(s, tag, "Aspect Orb Geo", 8)) return 0.0f;
    return pair_orb(s.option_sets.aspects, body_a, body_b, 2, aspect_index);
}

float aspect_orb_helio(Session& s, std::string_view tag, int body, int aspect_index) {
    if (!tag_ok(s, tag, "Aspect Orb Helio", 9)) return 0.0f;
    const AspectTable& t = s.option_sets.aspects;
    float orb = orb_of(t.orb_planets, aspect_index);
    if (body == 2) orb = orb_of(t.orb_moon, aspect_index);
    if (body == 1) orb = orb_of(t.orb_sun, aspect_index);
    return orb;
}

float aspect_orb_lemni(Session& s, std::string_view tag, int body_a, int body_b, int aspect_index) {
    if (!tag_ok(s, tag, "Aspect Orb Lemniscate", 11)) return 0.0f;
    return pair_orb(s.option_sets.aspects, body_a, body_b, 11, aspect_index);
}

float aspect_orb_helio_pair(Session& s, std::string_view tag, int aspect_index) {
    if (!tag_ok(s, tag, "Aspect Orb Helio", 10)) return 0.0f;
    return orb_of(s.option_sets.aspects.orb_planets, aspect_index);
}

float aspect_orb_elements(Session& s, std::string_view tag, int aspect_index) {
    if (!tag_ok(s, tag, "Aspect Orb Elements", 7)) return 0.0f;
    return orb_of(s.option_sets.aspects.orb_elements, aspect_index);
}

} // namespace celestark
