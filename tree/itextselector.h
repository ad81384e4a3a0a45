#pragma once

// Implemented by the host: chooses another text for a localised name. It has no virtual destructor, so that its
// operation is the first in the table.
class ITextSelector {
public:
    // `text` is a name as the text file gives it (UTF-16, null-terminated, valid during the call). Returns the text to
    // use instead, which must stay valid until the engine has copied it, or null to keep `text`. Called on the thread
    // that called Init or ChangeResID, with the engine's locks held: neither call back into the engine nor wait for
    // another thread that does. An exception leaves the names that are still to come as they are.
    virtual const wchar_t* Select(const wchar_t* text) = 0;

protected:
    ~ITextSelector() = default;
};
