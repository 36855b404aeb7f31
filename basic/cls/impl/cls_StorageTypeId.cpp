#include "cls/cls_StorageTypeId.h"

namespace {
int g_lastId = 0;
}

int cls_StorageTypeId::AllocateId()
{
    return ++g_lastId;
}
