// The persistent fields of the nex exceptions, shared by their DBWrite / reading constructors
// and their metadata registration.
#ifndef NEX_PERSISTENTFIELDS_H
#define NEX_PERSISTENTFIELDS_H

#include "cls/cls_FieldHandle.h"

namespace nex_fields {

// nex_TextException, nex_AssertException, nex_BadCastException, nex_InvalidObjException
const cls_FieldHandle Value(0, "m_Value");
// nex_ExitException
const cls_FieldHandle ExitMsg(0, "m_Value.m_Msg");
const cls_FieldHandle ExitErr(1, "m_Value.m_Err");
// nex_SystemErrorException
const cls_FieldHandle NativeErrorCode(0, "m_Value.m_NativeErrorCode");
const cls_FieldHandle CRTErrorCode(1, "m_Value.m_CRTErrorCode");
// nex_OutOfMemoryException
const cls_FieldHandle Msg(0, "m_Msg");
const cls_FieldHandle Err(1, "m_Err");
const cls_FieldHandle Uid(2, "m_Uid");

}  // namespace nex_fields

#endif
