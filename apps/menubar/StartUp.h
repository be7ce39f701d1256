#pragma once

#include "apps/menubar/Options.h"

#include <string>
#include <vector>

/// Chooses where the bar is drawn, for the QApplication that is made in its scope: on the X server
/// (under Wayland through XWayland), or offscreen when there is none. Also leaves out what a bar
/// never needs of Qt and would pay for. What the environment says already wins; what is set here is
/// taken away again, so that no other program inherits it.
class DisplayChoice {
  public:
    DisplayChoice();
    ~DisplayChoice();
    DisplayChoice(const DisplayChoice&) = delete;
    DisplayChoice& operator=(const DisplayChoice&) = delete;

  private:
    void set(const char* name, const char* value);

    std::vector<const char*> set_;
};

/// Sends what Qt has to say to the system log from now on.
void logQtMessages();

/// Gives the program the palette that was asked for. The desktop's is there at the start.
void applyAppearance(Appearance appearance);

/// The folder of the bar's own items, found from where this program is.
std::string ownItemsFolder();

/// A path as people write it, absolute and without trailing slashes.
std::string absolutePath(const std::string& path);
