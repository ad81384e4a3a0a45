#include "sysservices/trace.h"

void DregsweepTrace(const wchar_t* /*format*/, ...) noexcept {}
