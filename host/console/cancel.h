#pragma once

// Turns Ctrl-C and Ctrl-Break into a question that a run asks at every notification, for as long as the object lives.
// A second Ctrl-C ends the process at once, for a scan that reaches no notification.
class CCancel {
public:
    CCancel() noexcept;
    ~CCancel();
    CCancel(const CCancel&) = delete;
    CCancel& operator=(const CCancel&) = delete;

    // Has the user asked to stop? Any thread.
    bool Requested() const noexcept;
    // Asks to stop, as Ctrl-C does. Any thread. True when nobody had asked before.
    static bool Request() noexcept;
};

// From now on Ctrl-C ends the process at once, as stopped by the user, where no CCancel takes it: the status that the
// system gives is not the same everywhere, and may be that of success. Call it before the first CCancel.
void EndOnCancel() noexcept;
