#pragma once

// What dsw.exe returns to its caller.
enum class ExitStatus {
    Done = 0,
    Failed = 1,
    WrongUsage = 2,
    Stopped = 3,  // by the user: Ctrl-C, or "no" to a question
};
