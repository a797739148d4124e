// lumenote: the desktop front end of the recorder, living in the tray.
#include "app/startup.hpp"

int main(int argc, char** argv) {
    return lumenote::app::runDesktopApplication(argc, argv);
}
