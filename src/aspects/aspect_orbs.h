#pragma once
// The orb of an aspect for a pair of bodies, chosen from the loaded aspect set by the class of the
// bodies. The checks run in order and the later one wins, so the Sun beats the Moon and the Moon
// beats the planets:
//
//   aspect_orb_geo         planets; Moon (body 2) in the pair: Moon; Sun (body 1) in the pair: Sun
//   aspect_orb_helio       the same for one body
//   aspect_orb_lemni       as geo, with the Moon numbered 11 in the lemnicentric list
//   aspect_orb_helio_pair  planets
//   aspect_orb_elements    elements
//
// Numbering. Body numbers are those of the list searched, counted from 1: body b is entry b - 1
// of the position list (geo: 1 Sun, 2 Moon; lemni: 1 Sun, 11 the Moon at entry 10).
// `aspect_index` is the aspect's number in its set, from 1 to aspect_count in angle order: it
// reads element aspect_index - 1 of the AspectTable's lists. A number outside the set gives the
// orb 0, which makes the aspect be skipped.
//
// `tag` must be "B". Any other tag is a fatal error through the session (CK7 to CK11); when the
// fatal handler returns, the orb is 0.
#include <string_view>

namespace celestark {

struct Session;

float aspect_orb_geo(Session& s, std::string_view tag, int body_a, int body_b, int aspect_index);
float aspect_orb_helio(Session& s, std::string_view tag, int body, int aspect_index);
float aspect_orb_lemni(Session& s, std::string_view tag, int body_a, int body_b, int aspect_index);
float aspect_orb_helio_pair(Session& s, std::string_view tag, int aspect_index);
float aspect_orb_elements(Session& s, std::string_view tag, int aspect_index);

} // namespace celestark
