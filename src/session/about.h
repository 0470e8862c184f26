#pragma once
// The program's About text: what it is, and where its data come from with the attributions their
// sources ask for.
#include <string>
#include <vector>

namespace celestark {

// The lines of the About box, in order; an empty line separates paragraphs.
std::vector<std::string> about_text();

} // namespace celestark
