// the star database, star options, star group and fixed point windows.
#include "screens/widgets/desktop.h"

namespace celestark::screens {

void add_star_windows(Desktop&) {}

} // namespace celestark::screens
