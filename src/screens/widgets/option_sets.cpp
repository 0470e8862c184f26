// the zodiac, aspect set and colour set windows.
#include "screens/widgets/desktop.h"

namespace celestark::screens {

void add_option_set_windows(Desktop&) {}

} // namespace celestark::screens
