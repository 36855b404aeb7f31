// What the host facts ask of the platform (one definition per platform).
#ifndef UTL_HOSTINFOPLATFORM_H
#define UTL_HOSTINFOPLATFORM_H

#include <ctime>

namespace utl_HostInfoPlatform {

// The local broken-down time of now; false when it cannot be had.
bool LocalTime(std::tm& out);

}  // namespace utl_HostInfoPlatform

#endif
