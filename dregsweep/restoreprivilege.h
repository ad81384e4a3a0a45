#pragma once

// Enables SeRestorePrivilege in the token of the process, for good, and traces the outcome. Failure has no consequence
// but the trace line. Any thread.
void EnableRestorePrivilege() noexcept;
