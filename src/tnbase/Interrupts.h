#pragma once

namespace bomparser {

/// Takes over the user's wish to stop (Ctrl-C, or a polite request of the system to end). From now
/// on it ends the process at once with InterruptStatus(), unless a hold says that there is
/// something to put away first: then it is only remembered. A reader of our output that goes away,
/// and a limit on the size of files, are failed writes from now on, and no end of the process.
void CatchInterrupts();

/// True once the user has asked to stop while there was a hold.
bool IsInterrupted();

/// The exit status that tells of the interruption: 130 after Ctrl-C, 143 after a request to end.
int InterruptStatus();

/// While one exists, an interruption is only remembered: whoever holds asks IsInterrupted().
class InterruptHold {
 public:
  InterruptHold();
  ~InterruptHold();
  InterruptHold(const InterruptHold&) = delete;
  InterruptHold& operator=(const InterruptHold&) = delete;
};

}  // namespace bomparser
