#pragma once

namespace DefaultSignalHandlers {

/// The session's handler of SIGINT: asks for an interrupt of what is running.
void SigIntHandler(int signal);

} // namespace DefaultSignalHandlers
