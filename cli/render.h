#pragma once
// The render command of celestark-cli: a chart page drawn headless into a PNG, PDF or SVG file.
#include <map>
#include <string>

namespace celestark::cli {

// render --page WORD --out FILE.png|.pdf|.svg for a stored or an inline event, with
// --world-view, --zodiac, --houses, --colour-set NAME, --printing, --width PIXELS and
// --layout FILE.json (the drawing calls as JSON).
int command_render(const std::map<std::string, std::string>& options);

// bench --what render [--moments N]: milliseconds to draw a full geo1 page at 1600 pixels.
int command_bench_render(const std::map<std::string, std::string>& options);

} // namespace celestark::cli
