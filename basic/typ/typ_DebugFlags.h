/// @class typ_DebugFlags
/// Per-facility debug levels, set from a text such as "cls=2,nex=1" (the command line's error
/// option) and read by diagnostic code.
///
/// Two tables of 1024 slots indexed by facility (module) number: the facility's short name (null
/// where unused) and its level (0 at start). The names are filled at start-up from the library's
/// list of facilities.
/// Thread rule: the tables are plain ints and pointers without a lock: set levels
/// (SetDebugFlags, ParseDebugFlags) and make or reset the tables before other threads read them;
/// reads may then come from any thread.
#ifndef TYP_DEBUGFLAGS_H
#define TYP_DEBUGFLAGS_H

#include "zul_BasicExport.h"

class ZUL_BASIC_API typ_DebugFlags {
public:
    /// Slots of each table: facility numbers 0 to 1023.
    enum { TableSize = 1024 };

    /// Sets the level of the named facility (exact, case-sensitive). False when it is unknown.
    static bool SetDebugFlags(const char* name, int level);
    /// The level of the named facility, 0 when the name is unknown.
    static int GetDebugFlags(const char* name);
    /// Direct reads of a facility's slot (0 / null outside the table).
    ///@{
    static int GetDebugFlags(unsigned facility);
    static const char* GetDebugFacilityName(unsigned facility);
    ///@}

    /// Parses "name=number,name=number,...". An empty text is accepted. A bare name, a name
    /// followed by a comma, a sign, or anything after the digits but a comma makes the result
    /// false; so does an unknown name, but parsing goes on so that the known facilities are
    /// still set. A name or number longer than 31 characters is an error as well. An empty
    /// number counts as 0.
    static bool ParseDebugFlags(const char* text);

    /// Start-up and tear-down of the tables (the typ module).
    ///@{
    static void InitializeTables();
    static void ResetTables();
    ///@}
};

#endif
