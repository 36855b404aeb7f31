/// @file
/// Default hash functions of the hash table: a key and a bucket count to an index in
/// 0..buckets-1, the same for the same key during the whole process. buckets == 0 gives 0.
/// Thread rule: no state; any thread.
#ifndef OMI_HASHVALUE_H
#define OMI_HASHVALUE_H

#include "zul_CoreExport.h"

ZUL_CORE_API unsigned HashValue(const unsigned int& key, unsigned buckets);
ZUL_CORE_API unsigned HashValue(void* const& key, unsigned buckets);

#endif
