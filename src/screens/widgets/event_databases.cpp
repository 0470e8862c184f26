// the event database and event search windows.
#include "screens/widgets/desktop.h"

namespace celestark::screens {

void add_event_database_windows(Desktop&) {}

} // namespace celestark::screens
