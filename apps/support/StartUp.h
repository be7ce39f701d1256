#pragma once

#include "platform/base/NonCopyable.h"

#include <QByteArray>

#include <memory>
#include <optional>
#include <string_view>
#include <utility>
#include <vector>

class QApplication;

namespace apps {

// What a program does first, whatever it shows.

/// Which colours a program has.
enum class Appearance { Desktop, Light, Dark };

/// "desktop", "light" or "dark"; nothing for any other name.
std::optional<Appearance> appearanceOfName(std::string_view name);

/// Chooses where the program is drawn, for the QApplication that is made in its scope: on the X
/// server (under Wayland through XWayland), or offscreen when there is none. Also leaves out what
/// these programs never need of Qt and would pay for. What the environment says already wins, but
/// for Wayland; it is as before in the end, so that no other program inherits what is set here.
class DisplayChoice : platform::NonCopyable {
  public:
    DisplayChoice();
    ~DisplayChoice();

  private:
    void set(const char* name, const char* value);
    void replace(const char* name, const char* value);

    std::vector<std::pair<const char*, std::optional<QByteArray>>> changed_;
};

/// Makes the program's application object in the scope of a DisplayChoice, and has what Qt says
/// logged. Once, at the top of main; the program reads its options itself.
std::unique_ptr<QApplication> startApplication(char** argv, const char* name);

/// Sends what Qt has to say to the system log from now on.
void logQtMessages();

/// Gives the program the palette that was asked for. The desktop's is there at the start.
void applyAppearance(Appearance appearance);

} // namespace apps
