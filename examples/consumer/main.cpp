// A client of the installed library: brings it up, throws and catches one of its exceptions,
// and takes it down again.
#include <cstdio>

#include "ZULFNDUTI_BasicUtils.h"

int main()
{
    int count = 0;
    UTI_BasicUtils_initialize(count);

    int status = 1;
    try {
        nex_TextException failure(atr_String("consumer: expected failure"));
        failure.Throw(__FILE__, __LINE__);
    } catch (const nex_Exception& caught) {
        const atr_String report = caught.UserReport();
        std::printf("caught %s (type id 0x%X)\n", report.c_str(), caught.DynTypeId());
        status = (caught.DynTypeId() == nex_TextException::TypeId()) ? 0 : 1;
    }

    UTI_BasicUtils_finalize(count);
    if (count != 0)
        status = 1;
    return status;
}
