#pragma once

// Starts the companion service "zolkmsvc" of this machine. True also when it runs already; false when it is not
// installed, may not be opened or does not start. Waits until the service manager has accepted the start. Any thread.
[[nodiscard]] bool StartCompanionService() noexcept;
