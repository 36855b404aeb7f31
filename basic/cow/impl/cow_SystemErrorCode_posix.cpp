#include "cow/cow_SystemErrorCode.h"
#include "cow/impl/cow_SystemMessageText.h"

#include <cstring>

// POSIX system codes are errno values.
cow_String cow_SystemMessageText(uint32_t code)
{
    return cow_String(std::strerror(static_cast<int>(code)));
}
