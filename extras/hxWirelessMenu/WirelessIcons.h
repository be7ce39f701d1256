#pragma once

#include "platform/values/Image.h"

#include <array>
#include <memory>

namespace extras {

/// Returns the level of a strength in percent, from 0 to 4.
int levelOfStrength(int percent);

/// The icons of the wireless item. All are template images, drawn at the first use and kept. The
/// symbols have the same size, so an item that shows one does not move when it changes. Lengths are
/// even numbers of points: edges lie between pixels at 1, 1.5 and 2 pixels per point. Main thread
/// only.
class WirelessIcons {
  public:
    enum class Symbol {
        Level0, ///< also while the state is not known
        Level1,
        Level2,
        Level3,
        Level4,
        Connecting,
        Disconnected,
        Off,
        NoAdapter,
    };

    std::shared_ptr<platform::Image> symbol(Symbol symbol);
    /// Returns the symbol for a level from 0 to 4.
    std::shared_ptr<platform::Image> level(int level) { return symbol(static_cast<Symbol>(level)); }
    /// Returns a padlock.
    std::shared_ptr<platform::Image> lock();

  private:
    std::array<std::shared_ptr<platform::Image>, 9> symbols_;
    std::shared_ptr<platform::Image> lock_;
};

} // namespace extras
