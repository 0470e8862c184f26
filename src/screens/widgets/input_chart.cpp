// INPUT_CHART, the event input window.
#include "screens/widgets/desktop.h"

namespace celestark::screens {

void add_event_input_windows(Desktop&) {}

} // namespace celestark::screens
