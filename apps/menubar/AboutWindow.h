#pragma once

#include <QWidget>

namespace apps {

/// Shows the program's name, version, copyright and licence. Closes with Escape. Main thread only.
class AboutWindow final : public QWidget {
  public:
    AboutWindow();
};

} // namespace apps
