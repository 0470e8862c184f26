// the user guide and the About box.
#include "screens/widgets/desktop.h"

namespace celestark::screens {

void add_help_windows(Desktop&) {}

} // namespace celestark::screens
