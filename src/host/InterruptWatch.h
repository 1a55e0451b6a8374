#pragma once

#include "tnbase/Interrupts.h"

#include <QTimer>

namespace bomparser {

/// Closes all windows once the user or the system asks the program to end: what is under way is
/// cancelled, nobody is asked anything, and temporary files are put away. There is one, as long as
/// the windows.
class InterruptWatch {
 public:
  InterruptWatch();

 private:
  InterruptHold m_hold;
  QTimer m_timer;
};

}  // namespace bomparser
