#pragma once

#include <cstdint>

// The usage-event object of the optional companion library "kxaide". Its operations stand in its table without a
// destructor before them; the engine uses the ninth and knows nothing of the eight before it. Foreign code: an
// operation may throw whatever it likes. The object belongs to its library; nobody here releases it.
class IUsageEvents {
public:
    virtual void Reserved1() = 0;
    virtual void Reserved2() = 0;
    virtual void Reserved3() = 0;
    virtual void Reserved4() = 0;
    virtual void Reserved5() = 0;
    virtual void Reserved6() = 0;
    virtual void Reserved7() = 0;
    virtual void Reserved8() = 0;
    virtual void SendEvent(uint32_t code) = 0;

protected:
    ~IUsageEvents() = default;
};
