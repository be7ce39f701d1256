#pragma once

#include <QObject>
#include <QProcess>

#include <string>
#include <vector>

namespace apps {

/// Turns on the product's clock and calendar when the bar starts for the first time. Installing and
/// loading them can take seconds, so halvexctl does this while the bar shows its own clock, which
/// the product's clock replaces. Main thread only.
class FirstStart final : public QObject {
  public:
    /// Starts the first halvexctl if there is a preference pane. Without one, does nothing: the bar
    /// keeps its own clock, and the next start without a stored list is the first one again.
    /// Failures are logged. Destroying the object stops a running halvexctl.
    void turnOnItems();

  private:
    void turnOnNext();

    QProcess halvexctl_;
    std::vector<std::string> remaining_; // identifiers, last one first
};

} // namespace apps
