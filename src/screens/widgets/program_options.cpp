// Program_options, the display and print options.
#include "screens/widgets/desktop.h"

namespace celestark::screens {

void add_option_windows(Desktop&) {}

} // namespace celestark::screens
