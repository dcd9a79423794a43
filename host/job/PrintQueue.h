/// The default print queue.
#ifndef ZEL_HOST_PRINTQUEUE_H
#define ZEL_HOST_PRINTQUEUE_H

#include <string>

/// Hands a copy of the PostScript file `path` to the default print queue, and waits until the queue
/// has it. False when the queue does not take it, or there is no print command.
[[nodiscard]] bool HandToPrintQueue(const std::string &path);

#endif
