// The system's own message for an error code (one definition per platform).
#ifndef COW_SYSTEMMESSAGETEXT_H
#define COW_SYSTEMMESSAGETEXT_H

#include <cstdint>

#include "cow/cow_String.h"

cow_String cow_SystemMessageText(uint32_t code);

#endif
