// Start-up of the desktop application, in order: the display (without one
// the terminal recorder starts instead), the store and the recorder's
// services, the template store and the appearance, the recovery offer, then
// the status item. A second start hands over to the running application and
// ends; storage that cannot be opened shows the failure window and records
// nothing.
#pragma once

namespace lumenote::app {

// The process's exit status.
int runDesktopApplication(int argc, char** argv);

}  // namespace lumenote::app
