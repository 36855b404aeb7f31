// A client of the installed library: checks that the library it loaded is the version it was
// compiled against, brings the library up, throws and catches one of its exceptions, and takes
// it down again. Exit status 0 when all of that went as expected.
#include <cstdio>
#include <cstring>

#include "ZULFNDUTI_BasicUtils.h"

int main()
{
    std::printf("ZULFNDUTI %s (compiled against %s)\n", zul_VersionString(), ZULFNDUTI_VERSION_STRING);
    if (std::strcmp(zul_VersionString(), ZULFNDUTI_VERSION_STRING) != 0)
        return 1;

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
