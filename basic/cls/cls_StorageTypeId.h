/// @class cls_StorageTypeId
/// cls_StorageTypeId: process-wide ids for storage types, handed out by AllocateId to the classes
/// derived from it. Ids start at 1 and rise by one per call.
/// Thread rule: there is no lock: ids are allocated from one thread at a time (in practice during
/// start-up).
#ifndef CLS_STORAGETYPEID_H
#define CLS_STORAGETYPEID_H

#include "zul_BasicExport.h"

class ZUL_BASIC_API cls_StorageTypeId {
protected:
    static int AllocateId();
};

#endif
